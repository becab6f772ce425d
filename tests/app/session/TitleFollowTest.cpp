// `horalo title --follow` as a status bar runs it: lines of consecutive seconds with a
// %H:%M:%S title, a change of the settings shown at the next tick, JSON that parses, and an end
// when standard input closes or its output has no reader; with a running Horalo (followed over the
// bus) and without.

#include "HoraloProcess.h"
#include "support/QtPrinters.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTime>

namespace {

using namespace Qt::StringLiterals;

const QString kClock = u"%H:%M:%S"_s;
const QString kMarkedClock = u"X%H:%M:%S"_s;

// Reads lines of a follower; each is checked to be a clock, with or without the mark.
class Follower
{
public:
    Follower(const TestUser &user, const QStringList &arguments) : m_process(user, QString())
    {
        m_process.start(QStringList{u"title"_s, u"--follow"_s} + arguments);
    }

    QString line()
    {
        const QByteArray line = m_process.readLine(4000);
        EXPECT_TRUE(line.endsWith('\n'))
            << "no line within a few seconds: " << m_process.readStderr().constData();
        return QString::fromUtf8(line).trimmed();
    }

    HoraloProcess &process() { return m_process; }

private:
    HoraloProcess m_process;
};

QTime ClockOf(const QString &line)
{
    const QString clock = line.startsWith(QLatin1Char('X')) ? line.mid(1) : line;
    const QTime time = QTime::fromString(clock, u"HH:mm:ss"_s);
    EXPECT_TRUE(time.isValid()) << line.toStdString();
    return time;
}

// Lines one second apart, each the next second, and a settings write that shows at the next
// tick (a line already on its way may still show the old one).
void ExpectConsecutiveSecondsThatFollowAWrite(Follower &follower, const TestUser &user)
{
    QStringList lines;
    for (int i = 0; i < 3; ++i)
        lines.append(follower.line());
    DefaultsWrite(user, {u"menuTitleFormatter"_s, u"-string"_s, kMarkedClock});
    qsizetype firstAfterWrite = lines.size();
    for (int i = 0; i < 3; ++i)
        lines.append(follower.line());

    for (qsizetype i = 1; i < lines.size(); ++i) {
        EXPECT_EQ(ClockOf(lines.at(i - 1)).addSecs(1), ClockOf(lines.at(i)))
            << "lines " << i - 1 << " and " << i << ": "
            << lines.join(QLatin1Char(' ')).toStdString();
    }
    for (qsizetype i = 0; i < firstAfterWrite; ++i)
        EXPECT_FALSE(lines.at(i).startsWith(QLatin1Char('X'))) << lines.at(i).toStdString();
    qsizetype marked = firstAfterWrite;
    while (marked < lines.size() && !lines.at(marked).startsWith(QLatin1Char('X')))
        ++marked;
    EXPECT_LE(marked - firstAfterWrite, 1) << lines.join(QLatin1Char(' ')).toStdString();
    for (qsizetype i = marked; i < lines.size(); ++i)
        EXPECT_TRUE(lines.at(i).startsWith(QLatin1Char('X'))) << lines.at(i).toStdString();
}

void ExpectEndsWhenInputCloses(Follower &follower)
{
    follower.process().process().closeWriteChannel();
    ASSERT_TRUE(follower.process().waitForExit(5000));
    EXPECT_EQ(follower.process().exitCode(), 0);
}

QJsonObject JsonLine(const QString &line)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
    return document.object();
}

TEST(TitleFollowWithoutHoralo, RendersEachSecondFollowsTheSettingsAndWritesJsonThatParses)
{
    ASSERT_FALSE(HoraloIsOnBus());
    TestUser user;
    DefaultsWrite(user, {u"menuTitleFormatter"_s, u"-string"_s, kClock});
    Follower follower(user, {});
    ExpectConsecutiveSecondsThatFollowAWrite(follower, user);
    ExpectEndsWhenInputCloses(follower);

    DefaultsWrite(user, {u"menuTitleFormatter"_s, u"-string"_s, u"<%S> & co"_s});
    Follower json(user, {u"--json"_s});
    for (int i = 0; i < 2; ++i) {
        const QJsonObject line = JsonLine(json.line());
        EXPECT_TRUE(line.value(u"text"_s).toString().startsWith(u"&lt;"))
            << "markup in a title is text";
        EXPECT_TRUE(line.value(u"text"_s).toString().endsWith(u"&gt; &amp; co"));
        EXPECT_TRUE(line.value(u"tooltip"_s).toString().startsWith(u"It is now: "));
        EXPECT_EQ(line.value(u"class"_s).toString(), u"now"_s);
    }
    ExpectEndsWhenInputCloses(json);
}

// A bar that goes away may leave the follower's input open; with a title that changes once a
// day nothing would be written to notice, and the follower would outlive its bar by hours.
TEST(TitleFollowWithoutHoralo, EndsWhenNothingReadsItsOutput)
{
    TestUser user;
    // The shell ends when both ends of its pipe have; our input stays open throughout.
    QProcess pipeline;
    pipeline.setProcessEnvironment(user.environment(QString()));
    pipeline.start(u"sh"_s, {u"-c"_s, u"\"$0\" title --follow | head -n 1"_s, HoraloBinary()});
    ASSERT_TRUE(pipeline.waitForFinished(8000)) << "still running with nobody reading";
    EXPECT_EQ(pipeline.exitCode(), 0);
    EXPECT_EQ(pipeline.readAllStandardOutput().count('\n'), 1);
}

class TitleFollowWithHoralo : public RunningHoralo
{
    void prepare() override { defaultsWrite({u"menuTitleFormatter"_s, u"-string"_s, kClock}); }
};

TEST_F(TitleFollowWithHoralo, FollowsTheRunningTitleAndItsSettingsThenGoesOnAloneWhenHoraloQuits)
{
    Follower follower(user, {});
    ExpectConsecutiveSecondsThatFollowAWrite(follower, user);
    ASSERT_EQ(CallHoralo(u"Quit"_s).type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(horalo.waitForExit());
    QStringList lines;
    for (int i = 0; i < 3; ++i)
        lines.append(follower.line());
    for (qsizetype i = 1; i < lines.size(); ++i)
        EXPECT_EQ(ClockOf(lines.at(i - 1)).addSecs(1), ClockOf(lines.at(i)));
    ExpectEndsWhenInputCloses(follower);
}

TEST_F(TitleFollowWithHoralo, JsonShowsAMomentPickedInTheRunningChooser)
{
    Follower follower(user, {u"--json"_s});
    QJsonObject line = JsonLine(follower.line());
    EXPECT_EQ(line.value(u"class"_s).toString(), u"now"_s);
    EXPECT_FALSE(line.value(u"tooltip"_s).toString().contains(u"Days To"));

    // The chooser opens at the moment it last held; from then on it is the picked moment.
    ASSERT_EQ(CallHoralo(u"ShowChooser"_s).type(), QDBusMessage::ReplyMessage);
    bool picked = false;
    for (int i = 0; i < 4 && !picked; ++i) {
        line = JsonLine(follower.line());
        picked = line.value(u"class"_s).toString() == u"picked"_s;
    }
    ASSERT_TRUE(picked);
    const QStringList tooltip = line.value(u"tooltip"_s).toString().split(u'\n');
    ASSERT_EQ(tooltip.size(), 2);
    EXPECT_TRUE(tooltip.at(0).startsWith(u"It is now: "));
    EXPECT_TRUE(tooltip.at(1).startsWith(u"Days To ")) << tooltip.at(1).toStdString();
    ExpectEndsWhenInputCloses(follower);
}

} // namespace
