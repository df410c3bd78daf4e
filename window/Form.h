#pragma once

#include <span>

#include "platform/widgets/Properties.h"

namespace veltrane::form {

/// The main window's properties and those of its controls, each table in the order of application.
extern const std::span<const Property> kWindow;
extern const std::span<const Property> kCV;
extern const std::span<const Property> kGroupBox1;
extern const std::span<const Property> kCbJPG;
extern const std::span<const Property> kSLQualite;
extern const std::span<const Property> kTypeQual;
extern const std::span<const Property> kCbPNG;
extern const std::span<const Property> kLbNbFich;

} // namespace veltrane::form
