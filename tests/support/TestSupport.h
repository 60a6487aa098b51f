#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace wr::test {

// A clean start for every test function: standard paths in test mode, the C
// locale, a fresh application state with a fresh image, and a temporary
// folder that disappears with the fixture.
class Fixture
{
public:
    Fixture();
    ~Fixture();

    QString path(const QString &name) const; // a file name in the temporary folder
    QString folder() const;

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

// Call once from initTestCase(): standard paths in test mode.
void initTestProcess();

// Reads a whole file; an empty array when it cannot be read.
QByteArray readFile(const QString &path);
// Writes a whole file; false on failure.
bool writeFile(const QString &path, const QByteArray &bytes);

} // namespace wr::test
