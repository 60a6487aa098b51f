#pragma once

#include "TestSupport.h"

#include "core/Language.h"

#include <QObject>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <optional>

namespace wr::test {

// The interface languages as data rows name them.
inline constexpr const char *LanguageNames[LanguageCount]{"English", "Simplified Chinese", "Traditional Chinese"};

// One data row for each interface language, named after it: a column
// "language" (an int), then for each further column named, the value the
// row of that language holds. The value types are given, for example
// languageRows<QString>({"texts"}, {english, simplified, traditional}).
template <typename... T>
void languageRows(const std::array<const char *, sizeof...(T)> &columns = {}, const QList<T> &...values)
{
    QTest::addColumn<int>("language");
    std::size_t column = 0;
    (QTest::addColumn<T>(columns[column++]), ...);
    for (int language = English; language < LanguageCount; ++language) {
        QTestData &row = QTest::newRow(LanguageNames[language]) << language;
        ((row << values.at(language)), ...);
    }
}

// The base of the test suites. Standard paths are in test mode from the
// start, data functions included, and every test function runs on a clean
// start (the C locale, a fresh application state and image) with a
// temporary folder of its own that goes away after it. A suite that needs
// more around each function overrides setUp and tearDown rather than init
// and cleanup.
class Suite : public QObject
{
    Q_OBJECT

protected:
    // After the clean start, before each test function (or data row).
    virtual void setUp() {}
    // After each test function, before its folder goes.
    virtual void tearDown() {}

    // A file name in the test function's temporary folder, and the folder.
    QString filePath(const QString &name) const { return m_folder->filePath(name); }
    QString tempFolder() const { return m_folder->path(); }

private Q_SLOTS:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init()
    {
        resetProcessState();
        m_folder.emplace();
        setUp();
    }
    void cleanup()
    {
        tearDown();
        m_folder.reset();
    }

private:
    std::optional<QTemporaryDir> m_folder;
};

} // namespace wr::test
