// SPDX-License-Identifier: MIT
#include "platform/ini_text.h"

#include "platform/ini_value.h"

#include <QStringView>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

bool isSame(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

/// The name in a line "[name]"; empty for every other line.
std::optional<QString> sectionOf(const QByteArray &line)
{
    const QByteArray trimmed = line.trimmed();
    const auto end = trimmed.indexOf(']');
    if (!trimmed.startsWith('[') || end < 0)
        return {};
    return QString::fromUtf8(trimmed.mid(1, end - 1)).trimmed();
}

/// The name in a line "name=value"; empty for every other line. That of a comment is one that canName() refuses.
std::optional<QString> keyOf(const QByteArray &line)
{
    const auto equals = line.indexOf('=');
    if (equals < 0)
        return {};
    return QString::fromUtf8(line.left(equals)).trimmed();
}

QByteArray lineEndOf(const QByteArray &line)
{
    return line.endsWith("\r\n") ? "\r\n"_ba : line.endsWith('\n') ? "\n"_ba : QByteArray();
}

/// The line with another value: what stands before it, the blanks after "=" included, and the line end stay.
QByteArray withValue(const QByteArray &line, const QByteArray &value)
{
    auto start = line.indexOf('=') + 1;
    while (start < line.size() && (line.at(start) == ' ' || line.at(start) == '\t'))
        ++start;
    return line.left(start) + value + lineEndOf(line);
}

} // namespace

IniText::IniText(const QByteArray &bytes)
{
    constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
    if (bytes.startsWith(byteOrderMark))
        m_mark = byteOrderMark.toByteArray();
    qsizetype start = m_mark.size();
    while (start < bytes.size()) {
        const auto end = bytes.indexOf('\n', start);
        const auto next = end < 0 ? bytes.size() : end + 1;
        m_lines.push_back(bytes.mid(start, next - start));
        start = next;
    }
    m_lineEnd = m_lines.empty() ? QByteArray() : lineEndOf(m_lines.front());
    if (m_lineEnd.isEmpty())
        m_lineEnd = "\n"_ba;
}

IniText::Place IniText::find(const QString &section, const QString &key) const
{
    Place place;
    bool inSection = false;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        if (const auto name = sectionOf(m_lines[i]))
            inSection = isSame(*name, section);
        if (!inSection || m_lines[i].trimmed().isEmpty())
            continue;
        place.sectionEnd = i;
        if (const auto name = keyOf(m_lines[i]); name && isSame(*name, key))
            place.line = i;
    }
    return place;
}

std::optional<QString> IniText::value(const QString &section, const QString &key) const
{
    const Place place = find(section, key);
    if (!place.line)
        return {};
    const QByteArray &line = m_lines[*place.line];
    return ini::decoded(line.mid(line.indexOf('=') + 1));
}

void IniText::setValue(const QString &section, const QString &key, const QString &value)
{
    const Place place = find(section, key);
    const QByteArray encoded = ini::encoded(value);
    if (place.line) {
        m_lines[*place.line] = withValue(m_lines[*place.line], encoded);
        return;
    }
    endLastLine();
    const QByteArray line = key.toUtf8() + '=' + encoded + m_lineEnd;
    if (place.sectionEnd) {
        m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(*place.sectionEnd) + 1, line);
        return;
    }
    if (!m_lines.empty() && !m_lines.back().trimmed().isEmpty())
        m_lines.push_back(m_lineEnd);
    m_lines.push_back('[' + section.toUtf8() + ']' + m_lineEnd);
    m_lines.push_back(line);
}

void IniText::endLastLine()
{
    if (!m_lines.empty() && !m_lines.back().endsWith('\n'))
        m_lines.back() += m_lineEnd;
}

QByteArray IniText::bytes() const
{
    QByteArray all = m_mark;
    for (const QByteArray &line : m_lines)
        all += line;
    return all;
}

bool IniText::canName(const QString &section, const QString &key)
{
    const auto isLine = [](const QString &name) {
        return !name.isEmpty() && name == name.trimmed() && !name.contains(u'\n') && !name.contains(u'\r');
    };
    const bool isKey = isLine(key) && !key.contains(u'=') && !QStringView(u"[;#").contains(key.at(0));
    return isKey && isLine(section) && !section.contains(u']');
}

} // namespace harrowby
