#pragma once

#include "core/MemoryImage.h"

#include <QByteArray>
#include <QString>

namespace wr::test {

// A clean start for a test function: standard paths in test mode, the C
// locale, and a fresh application state with a fresh image. The suite base
// (TestSuite.h) runs it before every test function.
void resetProcessState();

// Reads a whole file; an empty array when it cannot be read.
QByteArray readFile(const QString &path);
// Writes a whole file; false on failure.
bool writeFile(const QString &path, const QByteArray &bytes);

// The image of a radio fresh from the factory.
MemoryImage freshImage();
// An image holding these bytes.
MemoryImage imageOf(const QByteArray &bytes);

} // namespace wr::test
