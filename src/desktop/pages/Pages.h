#pragma once

#include "desktop/Page.h"

namespace quarn::desktop {

Page* makeOverviewPage(PageContext& context);
Page* makeCpuPage(PageContext& context);
Page* makeMemoryPage(PageContext& context);
Page* makeProcessesPage(PageContext& context);
Page* makeApplicationsPage(PageContext& context);
Page* makeHistoryPage(PageContext& context);
Page* makeNetworkPage(PageContext& context);
Page* makeConnectionsPage(PageContext& context);
Page* makeDisksPage(PageContext& context);
Page* makeSensorsPage(PageContext& context);
Page* makePowerPage(PageContext& context);
Page* makeGpuPage(PageContext& context);
Page* makeSystemPage(PageContext& context);
Page* makeSettingsPage(PageContext& context);

} // namespace quarn::desktop
