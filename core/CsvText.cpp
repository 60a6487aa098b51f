#include "core/CsvText.h"

#include <QFile>

#include <utility>

namespace wr::csv {

namespace {

// Reads a text record by record. A line that starts with # where a record
// would start is a comment.
class Lexer
{
public:
    Lexer(QStringView text, QChar separator)
        : m_text(text)
        , m_separator(separator)
    {
    }

    QList<Record> all()
    {
        QList<Record> found;
        while (m_at < m_text.size()) {
            if (m_text[m_at] == u'#') {
                skipLine();
                continue;
            }
            Record record = next();
            if (record.fields.size() > 1 || !record.fields.front().trimmed().isEmpty())
                found.append(std::move(record));
        }
        return found;
    }

private:
    bool atLineEnd() const { return m_text[m_at] == u'\n' || m_text[m_at] == u'\r'; }
    bool followedBy(QChar c) const { return m_at + 1 < m_text.size() && m_text[m_at + 1] == c; }

    void skipLineEnd()
    {
        if (m_text[m_at] == u'\r' && followedBy(u'\n'))
            ++m_at;
        ++m_at;
        ++m_line;
    }

    void skipLine()
    {
        while (m_at < m_text.size() && !atLineEnd())
            ++m_at;
        if (m_at < m_text.size())
            skipLineEnd();
    }

    Record next()
    {
        Record record{m_line, {}};
        QString field;
        bool quoted = false;
        bool fieldStart = true;
        while (m_at < m_text.size()) {
            const QChar c = m_text[m_at];
            if (quoted) {
                if (c == u'"' && followedBy(u'"')) {
                    field += u'"';
                    ++m_at;
                } else if (c == u'"') {
                    quoted = false;
                } else if (c == u'\r' && followedBy(u'\n')) {
                    field += u'\n';
                    ++m_at;
                    ++m_line;
                } else {
                    field += c;
                    if (c == u'\n' || c == u'\r')
                        ++m_line;
                }
                ++m_at;
            } else if (c == u'"' && fieldStart) {
                quoted = true;
                fieldStart = false;
                ++m_at;
            } else if (c == m_separator) {
                record.fields.append(std::exchange(field, QString()));
                fieldStart = true;
                ++m_at;
            } else if (atLineEnd()) {
                skipLineEnd();
                break;
            } else {
                field += c;
                fieldStart = false;
                ++m_at;
            }
        }
        record.fields.append(field);
        return record;
    }

    QStringView m_text;
    QChar m_separator;
    qsizetype m_at = 0;
    int m_line = 1;
};

} // namespace

QList<Record> records(QStringView text, QChar separator)
{
    return Lexer(text, separator).all();
}

QString line(const QStringList &fields, QChar separator)
{
    QStringList quoted;
    quoted.reserve(fields.size());
    for (const QString &field : fields) {
        if (field.contains(separator) || field.contains(u'"') || field.contains(u'\n') || field.contains(u'\r'))
            quoted.append(u'"' + QString(field).replace(u'"', QStringLiteral("\"\"")) + u'"');
        else
            quoted.append(field);
    }
    return quoted.join(separator);
}

QString decode(const QByteArray &bytes)
{
    QString text = QString::fromUtf8(bytes);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

File readFile(const QString &path)
{
    QFile file(path);
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.read(MaxFileSize + 1);
    if (!file.isOpen() || file.error() != QFileDevice::NoError)
        return {{}, File::Problem::Unreadable, file.errorString()};
    if (bytes.size() > MaxFileSize)
        return {{}, File::Problem::TooLarge, {}};
    return {decode(bytes), File::Problem::None, {}};
}

} // namespace wr::csv
