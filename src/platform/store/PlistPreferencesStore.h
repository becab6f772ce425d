#pragma once

#include "platform/PreferencesStore.h"
