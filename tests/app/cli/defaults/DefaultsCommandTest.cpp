#include "BinaryPlistBuilder.h"
#include "DefaultsCommandFixture.h"
#include "app/settings/Settings.h"
#include "platform/NotificationCenter.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace {

using namespace Qt::StringLiterals;

struct RoundTrip
{
    QStringList write; // after "write k"
    QMetaType::Type storedType;
    QString printed;
};

TEST_F(DefaultsCommandTest, EveryTypeRoundTrips)
{
    const RoundTrip cases[] = {
        {{u"-string"_s, u"%Y"_s}, QMetaType::QString, u"%Y\n"_s},
        {{u"-string"_s, u"two words"_s}, QMetaType::QString, u"two words\n"_s},
        {{u"-bool"_s, u"yes"_s}, QMetaType::Bool, u"1\n"_s},
        {{u"-bool"_s, u"NO"_s}, QMetaType::Bool, u"0\n"_s},
        {{u"-bool"_s, u"true"_s}, QMetaType::Bool, u"1\n"_s},
        {{u"-bool"_s, u"0"_s}, QMetaType::Bool, u"0\n"_s},
        {{u"-int"_s, u"-42"_s}, QMetaType::LongLong, u"-42\n"_s},
        {{u"-int"_s, u"9223372036854775807"_s}, QMetaType::LongLong, u"9223372036854775807\n"_s},
        {{u"-float"_s, u"2.5"_s}, QMetaType::Double, u"2.5\n"_s},
        {{u"-float"_s, u"-1e-3"_s}, QMetaType::Double, u"-0.001\n"_s},
        {{u"-date"_s, u"2006-03-10T14:31:47-05:00"_s},
         QMetaType::QDateTime,
         u"2006-03-10T19:31:47Z\n"_s},
        // Without an offset, local time (America/New_York in the tests).
        {{u"-date"_s, u"2006-07-10T14:31:47"_s}, QMetaType::QDateTime, u"2006-07-10T18:31:47Z\n"_s},
        {{u"-array"_s, u"%Y"_s, u"Day"_s},
         QMetaType::QVariantList,
         u"(\n    \"%Y\",\n    Day\n)\n"_s},
        {{u"-array"_s}, QMetaType::QVariantList, u"()\n"_s},
    };
    for (const RoundTrip &c : cases) {
        const QString what = c.write.join(u' ');
        const CommandResult written = run(QStringList{u"write"_s, u"k"_s} + c.write);
        EXPECT_EQ(written.status, 0) << qPrintable(what) << qPrintable(written.err);
        EXPECT_TRUE(written.out.isEmpty() && written.err.isEmpty()) << qPrintable(what);
        EXPECT_EQ(stored(u"k"_s).typeId(), c.storedType) << qPrintable(what);
        const CommandResult read = run({u"read"_s, u"k"_s});
        EXPECT_EQ(read.status, 0);
        EXPECT_EQ(read.out, c.printed) << qPrintable(what);
    }
}

TEST_F(DefaultsCommandTest, ReadingTheDomainPrintsEveryKey)
{
    EXPECT_EQ(run({u"read"_s}).out, u"{}\n"_s);
    run({u"write"_s, u"Custom Dates"_s, u"-array"_s, u"%Y"_s, u"Day"_s});
    run({u"write"_s, u"IncludeTitleIcon"_s, u"-bool"_s, u"no"_s});
    run({u"write"_s, u"LastTitleDisplayName"_s, u"-string"_s, u"Medium \"Date\""_s});
    run({u"write"_s, u"count"_s, u"-int"_s, u"3"_s});
    run({u"write"_s, u"when"_s, u"-date"_s, u"2006-03-10T19:31:47Z"_s});
    const CommandResult read = run({u"read"_s});
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.out, u"{\n"
                        "    \"Custom Dates\" = (\n"
                        "        \"%Y\",\n"
                        "        Day\n"
                        "    );\n"
                        "    IncludeTitleIcon = 0;\n"
                        "    LastTitleDisplayName = \"Medium \\\"Date\\\"\";\n"
                        "    count = 3;\n"
                        "    when = 2006-03-10T19:31:47Z;\n"
                        "}\n"_s);

    // A delete removes only its key.
    EXPECT_EQ(run({u"delete"_s, u"count"_s}).status, 0);
    EXPECT_FALSE(stored(u"count"_s).isValid());
    EXPECT_EQ(stored(u"IncludeTitleIcon"_s), QVariant(false));
    EXPECT_EQ(run({u"read"_s, u"count"_s}).status, 2);
}

TEST_F(DefaultsCommandTest, WhatATerminalWouldActOnIsPrintedEscaped)
{
    // Tab, line feed and carriage return are what XML carries; DEL and the C1 controls (U+009B
    // starts a terminal command on its own) it carries too.
    const QString hostile = u"a\tb\nc\rd\u007fe\u009b2J"_s;
    ASSERT_EQ(run({u"write"_s, u"k"_s, u"-string"_s, hostile}).status, 0);
    EXPECT_EQ(stored(u"k"_s), QVariant(hostile));
    EXPECT_EQ(run({u"read"_s, u"k"_s}).out, u"\"a\\tb\\nc\\rd\\U007fe\\U009b2J\"\n"_s);
    EXPECT_EQ(run({u"read"_s}).out, u"{\n    k = \"a\\tb\\nc\\rd\\U007fe\\U009b2J\";\n}\n"_s);

    // A value on its own keeps its tabs and line feeds, so that scripts read the text itself.
    ASSERT_EQ(run({u"write"_s, u"k"_s, u"-string"_s, u"two\tcolumns\nand lines"_s}).status, 0);
    EXPECT_EQ(run({u"read"_s, u"k"_s}).out, u"two\tcolumns\nand lines\n"_s);
}

TEST_F(DefaultsCommandTest, ADamagedFileIsToldInOneLineAndKeptAsideAtTheNextWrite)
{
    // A UTF-16 key holding U+0000, as Python's plistlib writes it.
    const QByteArray damaged(
        "\x62\x70\x6c\x69\x73\x74\x30\x30\xd1\x01\x02\x62\x00\xe9\x00\x00\x10\x01\x08\x0b\x10"
        "\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x03\x00\x00\x00\x00\x00"
        "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x12",
        53);
    const QString path = DefaultPreferencesStorePath();
    QDir().mkpath(QFileInfo(path).path());
    ASSERT_TRUE(WriteFileBytes(path, damaged));

    const CommandResult read = run({u"read"_s});
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.out, u"{}\n"_s);
    EXPECT_EQ(read.err.count(u'\n'), 1) << qPrintable(read.err);
    EXPECT_TRUE(read.err.startsWith(u"horalo: the settings file '"_s)) << qPrintable(read.err);
    EXPECT_EQ(ReadFileBytes(path), damaged);

    const CommandResult written = run({u"write"_s, u"k"_s, u"-int"_s, u"1"_s});
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.err.count(u'\n'), 1) << qPrintable(written.err);
    EXPECT_TRUE(written.err.contains(u"is kept as '"_s)) << qPrintable(written.err);
    const QStringList aside = QDir(QFileInfo(path).path()).entryList({u"*.corrupt"_s}, QDir::Files);
    ASSERT_EQ(aside.size(), 1);
    EXPECT_EQ(ReadFileBytes(QFileInfo(path).path() + u'/' + aside.first()), damaged);
    EXPECT_EQ(run({u"read"_s, u"k"_s}).out, u"1\n"_s);
}

TEST_F(DefaultsCommandTest, AWriteThatWouldAlterAnotherKeyIsRefusedNamingIt)
{
    // {"\x01": 1} in binary form: XML cannot carry that key.
    BinaryPlistBuilder plist;
    const int key = plist.add(plist.ascii("\x01"));
    const int value = plist.add(plist.integer(1));
    const QByteArray binary = plist.build(plist.add(plist.dictionary({{key, value}})));
    const QString path = DefaultPreferencesStorePath();
    QDir().mkpath(QFileInfo(path).path());
    ASSERT_TRUE(WriteFileBytes(path, binary));

    const CommandResult result = run({u"write"_s, u"k"_s, u"-int"_s, u"2"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, u"horalo: the settings file holds the key '\\x01', whose name or value "
                          "cannot be written back as it is; nothing was written\n"_s);
    EXPECT_EQ(ReadFileBytes(path), binary);
    EXPECT_EQ(run({u"read"_s}).out, u"{\n    \"\\U0001\" = 1;\n}\n"_s);
}

TEST_F(DefaultsCommandTest, BadInputSaysWhatIsWrongInOneLineAndChangesNothing)
{
    ASSERT_EQ(run({u"write"_s, u"k"_s, u"-string"_s, u"kept"_s}).status, 0);
    const QString path = DefaultPreferencesStorePath();
    const QByteArray before = ReadFileBytes(path);

    const struct
    {
        QStringList args;
        QString problem;
    } cases[] = {
        {{}, u"needs read, write or delete"_s},
        {{u"frobnicate"_s}, u"unknown defaults command 'frobnicate'"_s},
        {{u"-bool"_s}, u"unknown defaults command '-bool'"_s},
        {{u"read"_s, u"a"_s, u"b"_s}, u"at most one key"_s},
        {{u"read"_s, u"missing"_s}, u"'missing' does not exist"_s},
        {{u"write"_s}, u"needs a key"_s},
        {{u"write"_s, u"k"_s}, u"needs a key"_s},
        {{u"write"_s, u"k"_s, u"-int"_s}, u"-int needs a value"_s},
        {{u"write"_s, u"k"_s, u"-color"_s, u"red"_s}, u"unknown type flag '-color'"_s},
        {{u"write"_s, u"k"_s, u"red"_s}, u"expected a type flag"_s},
        {{u"write"_s, u"k"_s, u"-int"_s, u"12x"_s}, u"'12x' is not an integer"_s},
        {{u"write"_s, u"k"_s, u"-int"_s, u"9223372036854775808"_s}, u"is not an integer"_s},
        {{u"write"_s, u"k"_s, u"-float"_s, u"abc"_s}, u"'abc' is not a number"_s},
        {{u"write"_s, u"k"_s, u"-float"_s, u"inf"_s}, u"'inf' is not a number"_s},
        {{u"write"_s, u"k"_s, u"-bool"_s, u"maybe"_s}, u"'maybe' is not a boolean"_s},
        {{u"write"_s, u"k"_s, u"-date"_s, u"yesterday"_s}, u"'yesterday' is not an ISO 8601"_s},
        {{u"write"_s, u"k"_s, u"-date"_s, u"2006-13-01T00:00:00Z"_s}, u"not an ISO 8601"_s},
        {{u"write"_s, u"k"_s, u"-string"_s, u"a"_s, u"b"_s}, u"-string takes one value"_s},
        {{u"write"_s, QString(), u"-string"_s, u"a"_s}, u"must not be empty"_s},
        {{u"delete"_s}, u"delete needs a key"_s},
        {{u"delete"_s, u"k"_s, u"j"_s}, u"delete takes one key"_s},
        {{u"delete"_s, u"missing"_s}, u"'missing' does not exist"_s},
        // What the file cannot carry is refused, not quietly turned into something else.
        {{u"write"_s, u"a\u0001b"_s, u"-string"_s, u"x"_s}, u"the key 'a\\x01b' holds"_s},
        {{u"write"_s, u"k"_s, u"-string"_s, QString(u"a\0b"_s)}, u"the value 'a\\x00b' holds"_s},
        {{u"write"_s, u"k"_s, u"-array"_s, u"ok"_s, u"\u001b[2J"_s}, u"'\\x1b[2J' holds"_s},
        {{u"write"_s, u"k"_s, u"-string"_s, u"\uffff"_s}, u"holds a character"_s},
        // Arguments are shown escaped, so the message stays on one line.
        {{u"read"_s, u"two\nlines"_s}, u"'two\\nlines' does not exist"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args.join(u' ').toStdString());
        const CommandResult result = run(c.args);
        ExpectBadInput(result);
        EXPECT_TRUE(result.err.contains(c.problem)) << qPrintable(result.err);
    }
    EXPECT_EQ(ReadFileBytes(path), before);
}

// Keeps what is posted, in order.
class PostRecorder final : public DistributedNotificationCenter
{
public:
    void addObserver(const QString &, const QString &, Observer) override {}
    void postNotification(const QString &name, const QString &object) override
    {
        posts.append(name + u'/' + object);
    }

    QStringList posts;
};

TEST_F(DefaultsCommandTest, EachChangeIsAnnouncedOnceAndNothingElseIs)
{
    PlistPreferencesStore store(DefaultPreferencesStorePath());
    PostRecorder center;
    QString ignored;
    QTextStream out(&ignored);
    QTextStream err(&ignored);
    const auto runOn = [&](const QStringList &args) {
        return RunDefaultsCommandOn(store, &center, args, out, err);
    };
    const QString announced = u"Preferences Changed/org.horalo.Horalo"_s;

    EXPECT_EQ(runOn({u"write"_s, u"k"_s, u"-int"_s, u"1"_s}), 0);
    EXPECT_EQ(center.posts, QStringList{announced});
    EXPECT_EQ(runOn({u"read"_s, u"k"_s}), 0);
    EXPECT_EQ(runOn({u"read"_s}), 0);
    EXPECT_EQ(runOn({u"write"_s, u"k"_s, u"-int"_s, u"x"_s}), 2);
    EXPECT_EQ(runOn({u"delete"_s, u"missing"_s}), 2);
    EXPECT_EQ(center.posts.size(), 1);
    EXPECT_EQ(runOn({u"delete"_s, u"k"_s}), 0);
    EXPECT_EQ(center.posts, QStringList(2, announced));
}

} // namespace
