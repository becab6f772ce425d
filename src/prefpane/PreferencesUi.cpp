#include "prefpane/PreferencesUi.h"

#include "platform/Platform.h"

PreferencesUi CreatePreferencesUi(Platform &platform, LocalWindowNotificationCenter &windowCenter)
{
    PreferencesUi ui;
    ui.window = std::make_unique<PreferencesWindow>(windowCenter);
    ui.controller = std::make_unique<HoraloPrefPane>(platform, ui.window->outlets());
    ui.window->connectActions(*ui.controller);
    return ui;
}
