// SPDX-License-Identifier: MIT
// The saved settings, a file that a person or another program may have written.
#include "tests/fuzz/fuzz.h"

#include "platform/ini_text.h"
#include "platform/ini_value.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::fuzz;

namespace {

const QString section = u"Option"_s;
const QString key = u"Title"_s;

void readsBack(const QByteArray &bytes, const QString &value)
{
    IniText ini(bytes);
    const auto other = ini.value(u"POS"_s, u"COM"_s);
    ini.setValue(section, key, value);
    const IniText again(ini.bytes());
    demand(again.value(section, key) == value, "what was set reads back");
    demand(again.value(u"POS"_s, u"COM"_s) == other, "another key keeps its value");
    IniText twice(ini.bytes());
    twice.setValue(section, key, value);
    demand(twice.bytes() == ini.bytes(), "setting the same once more changes nothing");
}

} // namespace

/// The first line is a value to set, the rest the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray all = asBytes(data, size);
    const qsizetype end = all.indexOf('\n');
    const QString value = QString::fromUtf8(end < 0 ? all : all.first(end));
    const QByteArray file = end < 0 ? QByteArray() : all.sliced(end + 1);
    demand(IniText(file).bytes() == file, "what is not changed keeps every byte");
    demand(ini::decoded(ini::encoded(value)) == value, "a written value reads back");
    static_cast<void>(ini::decoded(file));
    static_cast<void>(IniText(file).value(section, key));
    readsBack(file, value);
    return 0;
}
