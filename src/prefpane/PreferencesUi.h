#pragma once

// The preferences window and its controller, made and wired as the application's layout makes
// them.

#include "prefpane/HoraloPrefPane.h"
#include "prefpane/PreferencesWindow.h"

#include <memory>

struct Platform;

struct PreferencesUi
{
    std::unique_ptr<PreferencesWindow> window;
    std::unique_ptr<HoraloPrefPane> controller;
};

// Makes the (hidden) window and its controller and connects every outlet and action. The
// controller's awakeFromNib is not called: the caller calls it once, when the rest of the
// application's layout is ready. windowCenter must be the one behind platform.windowCenter, so
// that this window's closing reaches every observer. Destroy the controller first.
PreferencesUi CreatePreferencesUi(Platform &platform, LocalWindowNotificationCenter &windowCenter);
