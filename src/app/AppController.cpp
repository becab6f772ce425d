#include "app/AppController.h"
