#include "desktop/panels/WidgetPanel.h"
