#include "platform/dbus/DBusNotificationCenter.h"
