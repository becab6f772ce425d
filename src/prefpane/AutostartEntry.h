#pragma once

// The per-user autostart entry that starts Horalo when the user logs in: a desktop entry in
// $XDG_CONFIG_HOME/autostart, which every XDG session manager reads. Whether it exists is the
// setting itself, so it is deliberately not kept in the settings store as well: a user who
// deletes the file by hand, or turns it off in the desktop's own start-up dialog, sees the
// check box follow.

#include <QString>

class AutostartEntry
{
public:
    // configHome is the XDG configuration directory; program is what the entry runs.
    AutostartEntry(QString configHome, QString program);

    // $XDG_CONFIG_HOME, or ~/.config when it is unset or not absolute.
    static QString DefaultConfigHome();
    // The command that starts this program (LaunchCommand of the running executable).
    static QString DefaultProgram();
    // The command that starts Horalo, given the running executable. The desktop program
    // (horalo-desktop, beside horalo in a build tree, in libexec/horalo once installed) is
    // started through horalo, which keeps to one instance per session. The bare name when PATH
    // finds that very executable under it, so a package upgrade keeps working; else its path.
    static QString LaunchCommand(const QString &runningExecutable);
    // A program as one Exec= argument of a desktop entry, quoted and escaped when it must be.
    static QString ExecArgument(const QString &program);

    QString filePath() const;
    // The file's text for the program.
    QString contents() const;

    // True when the entry exists and is not switched off (Hidden=true, or
    // X-GNOME-Autostart-enabled=false, as desktops' start-up dialogs write).
    bool isEnabled() const;
    // Writes the entry (atomically, creating the directory) or removes it. On failure returns
    // false, leaves what was there and sets *error to a sentence naming the file and the cause.
    bool setEnabled(bool enabled, QString *error);

private:
    QString m_configHome;
    QString m_program;
};
