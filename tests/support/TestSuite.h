#pragma once

#include "TestSupport.h"

#include <QObject>

#include <optional>

namespace wr::test {

// The base of the test suites. Standard paths are in test mode from the
// start, data functions included, and every test function runs on a clean
// Fixture (the C locale, a fresh application state and image, a temporary
// folder of its own) that goes away after it. A suite that needs more around
// each function overrides setUp and tearDown rather than init and cleanup.
class Suite : public QObject
{
    Q_OBJECT

protected:
    // After the fixture is made, before each test function (or data row).
    virtual void setUp() {}
    // After each test function, before the fixture goes.
    virtual void tearDown() {}

    // A file name in the test function's temporary folder, and the folder.
    QString filePath(const QString &name) const { return m_fixture->path(name); }
    QString tempFolder() const { return m_fixture->folder(); }

private Q_SLOTS:
    void initTestCase() { initTestProcess(); }
    void init()
    {
        m_fixture.emplace();
        setUp();
    }
    void cleanup()
    {
        tearDown();
        m_fixture.reset();
    }

private:
    std::optional<Fixture> m_fixture;
};

} // namespace wr::test
