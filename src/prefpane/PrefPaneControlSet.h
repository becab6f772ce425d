#pragma once

// The preferences window's controls under their outlets' names, of one kind or another: the
// desktop window's widgets seen through QtPrefPaneControls, or controls in memory. Both kinds
// hand their outlets to the controller, and wire their check boxes to its actions, here.

#include "prefpane/HoraloPrefPane.h"

template <typename CheckBoxType, typename PopUpButtonType, typename ButtonType,
          typename VersionFieldType, typename CharacterFieldType>
struct PrefPaneControlSet
{
    VersionFieldType versionInfoField;
    CheckBoxType useSymbolicNames;
    CheckBoxType initDateTimeChooserToCurrentTimeWhenOpened;
    CheckBoxType dynamicDateTimeChooser;
    CheckBoxType includeGMTDateTime;
    CheckBoxType includeDateOnlyItems;
    CheckBoxType includeTimeOnlyItems;
    PopUpButtonType menuTitleDisplayPopupButton;
    CheckBoxType includeTitleIconButton;
    ButtonType addCusomDateButton;
    ButtonType deleteCustomDateButton;
    CharacterFieldType formatCharacterTextField;

    // With the parts that each kind keeps elsewhere.
    PrefPaneOutlets outlets(Window *window, TableView *customDatesTable,
                            TextField *formattedDateTextField)
    {
        PrefPaneOutlets outlets;
        outlets.window = window;
        outlets.versionInfoField = &versionInfoField;
        outlets.useSymbolicNames = &useSymbolicNames;
        outlets.initDateTimeChooserToCurrentTimeWhenOpened =
            &initDateTimeChooserToCurrentTimeWhenOpened;
        outlets.dynamicDateTimeChooser = &dynamicDateTimeChooser;
        outlets.includeGMTDateTime = &includeGMTDateTime;
        outlets.includeDateOnlyItems = &includeDateOnlyItems;
        outlets.includeTimeOnlyItems = &includeTimeOnlyItems;
        outlets.menuTitleDisplayPopupButton = &menuTitleDisplayPopupButton;
        outlets.includeTitleIconButton = &includeTitleIconButton;
        outlets.customDatesTable = customDatesTable;
        outlets.addCusomDateButton = &addCusomDateButton;
        outlets.deleteCustomDateButton = &deleteCustomDateButton;
        outlets.formattedDateTextField = formattedDateTextField;
        outlets.formatCharacterTextField = &formatCharacterTextField;
        return outlets;
    }

    // Calls wire(box, action) for every check box, with the action its click sends.
    template <typename Wire> void wireCheckBoxes(Wire wire)
    {
        wire(useSymbolicNames, &HoraloPrefPane::useSymbolicNamesButtonClicked);
        wire(initDateTimeChooserToCurrentTimeWhenOpened,
             &HoraloPrefPane::initDateTimeChooserToCurrentTimeWhenOpened);
        wire(dynamicDateTimeChooser, &HoraloPrefPane::dynamicDateTimeChooser);
        wire(includeGMTDateTime, &HoraloPrefPane::includeGMTDateTimeButtonClicked);
        wire(includeDateOnlyItems, &HoraloPrefPane::includeDateOnlyItemsButtonClicked);
        wire(includeTimeOnlyItems, &HoraloPrefPane::includeTimeOnlyItemsButtonClicked);
        wire(includeTitleIconButton, &HoraloPrefPane::includeTitleIconButtonClicked);
    }
};
