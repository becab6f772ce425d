#include "platform/store/PlistPreferencesStore.h"
