#pragma once

#include "core/ImageFields.h"
#include "core/MemoryImage.h"

#include <QStringList>

namespace wr {

// Every field of the optional features and of the key setting as
// "caption: value" lines, in a language, with the texts the two dialogs
// show: for comparing the settings of two data files without the window.
QStringList describeSettings(const MemoryImage &image, int languageIndex);
// The same lines with the bits of the image each one shows.
QList<FieldLine> describeSettingFields(const MemoryImage &image, int languageIndex);

} // namespace wr
