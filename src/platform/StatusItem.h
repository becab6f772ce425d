#pragma once

#include <QPoint>
#include <QString>

#include <optional>

class Menu;

// The item in the desktop's status area: a title, an optional image and a menu.
class StatusItem
{
public:
    virtual ~StatusItem() = default;

    // The text shown in the status area (where there is no room for text, its tool tip).
    virtual void setTitle(const QString &title) = 0;
    virtual QString title() const = 0;
    // An image resource name as found by Application::imageNamed(); empty for no image.
    virtual void setImage(const QString &imageName) = 0;
    // The menu is borrowed; the item shows it and tells it when it is about to open.
    virtual void setMenu(Menu *menu) = 0;
    virtual Menu *menu() const = 0;
    // Shows the menu as if the item had been clicked (the menu is told it is about to open, so
    // it is rebuilt first), at a screen position, or at the pointer without one.
    virtual void popUpMenu(std::optional<QPoint> position) = 0;
};

class StatusBar
{
public:
    virtual ~StatusBar() = default;
    // A new item in the status area, as wide as its title and image. The bar owns it for the
    // rest of the process.
    virtual StatusItem *statusItem() = 0;
};
