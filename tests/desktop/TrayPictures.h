#pragma once

#include <QString>

namespace quarn::testing {

/// Writes into `folder`: status items in every style and size on light and dark panels, enlarged four times,
/// and a popover and a floating panel of each kind in the present theme. False when a file cannot be written.
bool drawTrayPictures(const QString& folder, const QString& theme);

} // namespace quarn::testing
