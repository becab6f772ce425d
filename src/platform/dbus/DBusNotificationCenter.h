#pragma once

#include "platform/NotificationCenter.h"
