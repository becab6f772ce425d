#pragma once

// Everything the logic may reach of the desktop, handed to controllers in their constructor.
// The desktop implementation lives in platform/qt, the in-memory one in platform/memory.

#include "platform/Application.h"
#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/NotificationCenter.h"
#include "platform/PreferencesStore.h"
#include "platform/PreferencesStoreWatcher.h"
#include "platform/StatusItem.h"
#include "platform/Timer.h"
#include "platform/UserDefaults.h"
#include "platform/Window.h"

struct Platform
{
    PreferencesStore &store;
    UserDefaults &userDefaults;
    DistributedNotificationCenter &distributedCenter;
    WindowNotificationCenter &windowCenter;
    const Clock &clock;
    TimerScheduler &timers;
    StatusBar &statusBar;
    Clipboard &clipboard;
    Application &application;
    PreferencesStoreWatcher &storeWatcher;
};

// What the user-interface description provides: the chooser window and its picker.
struct ChooserInterface
{
    Window *window = nullptr;
    DatePicker *datePicker = nullptr;
};
