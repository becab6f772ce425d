#pragma once

#include <QString>

// What a status bar shows of Horalo at one moment.
struct StatusBarState
{
    QString title;
    QString tooltip; // "It is now: ..." and, while a moment is picked, its "Days To" line
    bool picked = false;

    bool operator==(const StatusBarState &) const = default;
};

// The line `horalo title --follow` prints: the title alone, controls replaced so one title is
// one line.
QString PlainStatusBarLine(const StatusBarState &state);

// The line `horalo title --follow --json` prints, one JSON object for Waybar's
// `return-type: json`: {"text": title, "tooltip": ..., "class": "picked" or "now"}. Waybar reads
// text and tooltip as Pango markup, so &, < and > are written as entities first.
QString JsonStatusBarLine(const StatusBarState &state);

// The text with Pango markup's special characters written as entities.
QString PangoEscaped(const QString &text);
