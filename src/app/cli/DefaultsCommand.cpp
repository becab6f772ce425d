#include "app/cli/DefaultsCommand.h"

#include "app/cli/CommandApplication.h"
#include "app/cli/CommandParser.h"
#include "app/cli/TerminalText.h"
#include "app/settings/Settings.h"
#include "platform/AppIdentifier.h"
#include "platform/PreferencesStore.h"
#include "platform/dbus/DBusNotificationCenter.h"
#include "platform/store/PlistPreferencesStore.h"
#include "platform/store/PropertyList.h"

#include <QDateTime>

#include <cmath>
#include <optional>

namespace {

const QString kTypeFlags = QStringLiteral("-bool, -int, -float, -string, -date or -array");
const QString kUnknownVerb =
    QStringLiteral("unknown defaults command '%1' (read, write or delete)");

// How long a write waits for the bus to pass its broadcast on before the process exits.
constexpr int kBroadcastFlushMs = 1000;

struct Failure
{
    QString message;
};

void PrintError(QTextStream &err, const QString &message)
{
    PrintCommandLineError(err, message);
}

QString Quoted(const QString &text)
{
    return u'\'' + text + u'\'';
}

std::optional<QVariant> ParseBool(const QString &text, Failure &failure)
{
    const QString word = text.toLower();
    if (word == u"true" || word == u"yes" || word == u"1")
        return QVariant(true);
    if (word == u"false" || word == u"no" || word == u"0")
        return QVariant(false);
    failure.message =
        Quoted(text) + QStringLiteral(" is not a boolean (true, false, yes, no, 1 or 0)");
    return std::nullopt;
}

std::optional<QVariant> ParseInt(const QString &text, Failure &failure)
{
    bool ok = false;
    const qlonglong value = text.toLongLong(&ok, 10);
    if (!ok) {
        failure.message = Quoted(text) + QStringLiteral(" is not an integer");
        return std::nullopt;
    }
    return QVariant(value);
}

std::optional<QVariant> ParseFloat(const QString &text, Failure &failure)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value)) {
        failure.message = Quoted(text) + QStringLiteral(" is not a number");
        return std::nullopt;
    }
    return QVariant(value);
}

std::optional<QVariant> ParseDate(const QString &text, Failure &failure)
{
    // A time without an offset is local time, as ISO 8601 has it.
    const QDateTime date = QDateTime::fromString(text, Qt::ISODateWithMs);
    const std::optional<QVariant> kept =
        date.isValid() ? NormalizedPropertyListValue(date.toUTC()) : std::nullopt;
    if (!kept) {
        failure.message =
            Quoted(text) + QStringLiteral(" is not an ISO 8601 date (like 2024-05-01T09:30:00Z)");
        return std::nullopt;
    }
    return kept;
}

// The value of `write KEY FLAG VALUES...`.
std::optional<QVariant> ParseTypedValue(const QString &flag, const QStringList &values,
                                        Failure &failure)
{
    if (flag == u"-array") {
        QVariantList list;
        for (const QString &value : values)
            list.append(value);
        return QVariant(list);
    }

    using Parser = std::optional<QVariant> (*)(const QString &, Failure &);
    Parser parse = nullptr;
    if (flag == u"-bool" || flag == u"-boolean")
        parse = ParseBool;
    else if (flag == u"-int" || flag == u"-integer")
        parse = ParseInt;
    else if (flag == u"-float")
        parse = ParseFloat;
    else if (flag == u"-date")
        parse = ParseDate;
    else if (flag == u"-string")
        parse = [](const QString &text, Failure &) { return std::optional<QVariant>(text); };

    if (!parse) {
        failure.message = flag.startsWith(u'-')
                              ? QStringLiteral("unknown type flag ") + Quoted(flag) +
                                    QStringLiteral(" (") + kTypeFlags + u')'
                              : QStringLiteral("expected a type flag (") + kTypeFlags +
                                    QStringLiteral(") before ") + Quoted(flag);
        return std::nullopt;
    }
    if (values.isEmpty()) {
        failure.message = flag + QStringLiteral(" needs a value");
        return std::nullopt;
    }
    if (values.size() > 1) {
        failure.message =
            flag + QStringLiteral(" takes one value, not ") + QString::number(values.size());
        return std::nullopt;
    }
    return parse(values.first(), failure);
}

bool IsPlainWord(const QString &text)
{
    if (text.isEmpty() || !(text.at(0).isLetter() && text.at(0).unicode() < 128))
        return false;
    for (const QChar c : text) {
        if (c.unicode() >= 128 || !(c.isLetterOrNumber() || c == u'_'))
            return false;
    }
    return true;
}

QString QuotedIfNeeded(const QString &text)
{
    if (IsPlainWord(text))
        return text;
    QString escaped;
    for (const QChar c : text) {
        if (c == u'"' || c == u'\\')
            escaped += u'\\' + QString(c);
        else if (c == u'\n')
            escaped += QStringLiteral("\\n");
        else if (c == u'\t')
            escaped += QStringLiteral("\\t");
        else if (c == u'\r')
            escaped += QStringLiteral("\\r");
        else if (IsControlCharacter(c.unicode()))
            escaped += QStringLiteral("\\U%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            escaped += c;
    }
    return u'"' + escaped + u'"';
}

// A value read on its own is printed as it stands, so that scripts get the text itself; one
// holding characters a terminal would act on is quoted and escaped like a string in a list.
QString TopLevelString(const QString &text)
{
    for (const QChar c : text) {
        if (IsControlCharacter(c.unicode()) && c != u'\n' && c != u'\t')
            return QuotedIfNeeded(text);
    }
    return text;
}

QString Describe(const QVariant &value, int level, bool topLevel)
{
    const QString indent(4 * (level + 1), u' ');
    const QString closingIndent(4 * level, u' ');
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Double: {
        const double d = value.toDouble();
        if (std::isnan(d))
            return QStringLiteral("nan");
        if (std::isinf(d))
            return d > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
        return QString::number(d, 'g', QLocale::FloatingPointShortest);
    }
    case QMetaType::QDateTime:
        return value.toDateTime().toUTC().toString(Qt::ISODate);
    case QMetaType::QByteArray:
        return u'<' + QString::fromLatin1(value.toByteArray().toHex()) + u'>';
    case QMetaType::QString:
        return topLevel ? TopLevelString(value.toString()) : QuotedIfNeeded(value.toString());
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        if (list.isEmpty())
            return QStringLiteral("()");
        QString text = QStringLiteral("(\n");
        for (qsizetype i = 0; i < list.size(); ++i) {
            text += indent + Describe(list.at(i), level + 1, false);
            text += i + 1 < list.size() ? QStringLiteral(",\n") : QStringLiteral("\n");
        }
        return text + closingIndent + u')';
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        if (map.isEmpty())
            return QStringLiteral("{}");
        QString text = QStringLiteral("{\n");
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            text += indent + QuotedIfNeeded(it.key()) + QStringLiteral(" = ") +
                    Describe(it.value(), level + 1, false) + QStringLiteral(";\n");
        }
        return text + closingIndent + u'}';
    }
    default:
        // Integers of every width.
        return value.toString();
    }
}

QString MissingKeyMessage(const QString &key)
{
    return QStringLiteral("the key ") + Quoted(key) + QStringLiteral(" does not exist in ") +
           AppIdentifier;
}

// Saves the store and tells a running Horalo. Only a failed save is an error: like every
// other poster, we do not check whether anyone heard the broadcast.
int SaveAndAnnounce(PreferencesStore &store, DistributedNotificationCenter *center,
                    QTextStream &err)
{
    if (!store.appSynchronize(AppIdentifier)) {
        const QString problem = store.takeProblem();
        PrintError(err,
                   problem.isEmpty() ? QStringLiteral("could not save the settings") : problem);
        return 1;
    }
    if (center)
        center->postNotification(PreferencesChangedNotification, AppIdentifier);
    return 0;
}

int Read(PreferencesStore &store, const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() > 2) {
        PrintError(err, QStringLiteral("read takes at most one key"));
        return 2;
    }
    store.appSynchronize(AppIdentifier);
    if (args.size() == 1) {
        out << Describe(store.copyAllValues(AppIdentifier), 0, false) << '\n';
        return 0;
    }
    const QVariant value = store.copyAppValue(args.at(1), AppIdentifier);
    if (!value.isValid()) {
        PrintError(err, MissingKeyMessage(args.at(1)));
        return 2;
    }
    out << Describe(value, 0, true) << '\n';
    return 0;
}

int Write(PreferencesStore &store, DistributedNotificationCenter *center, const QStringList &args,
          QTextStream &err)
{
    if (args.size() < 3) {
        PrintError(err, QStringLiteral("write needs a key, a type flag (") + kTypeFlags +
                            QStringLiteral(") and a value"));
        return 2;
    }
    const QString key = args.at(1);
    if (key.isEmpty()) {
        PrintError(err, QStringLiteral("the key must not be empty"));
        return 2;
    }
    // Anything the file would have to change or drop is refused here, before it is stored.
    if (!PropertyListCanKeepText(key)) {
        PrintError(err, QStringLiteral("the key ") + Quoted(key) +
                            QStringLiteral(" holds a character the settings file cannot keep"));
        return 2;
    }
    Failure failure;
    const std::optional<QVariant> value = ParseTypedValue(args.at(2), args.mid(3), failure);
    if (!value) {
        PrintError(err, failure.message);
        return 2;
    }
    if (const std::optional<QString> text = FirstTextPropertyListCannotKeep(*value)) {
        PrintError(err, QStringLiteral("the value ") + Quoted(*text) +
                            QStringLiteral(" holds a character the settings file cannot keep"));
        return 2;
    }
    store.appSynchronize(AppIdentifier);
    store.setAppValue(key, *value, AppIdentifier);
    return SaveAndAnnounce(store, center, err);
}

int Delete(PreferencesStore &store, DistributedNotificationCenter *center, const QStringList &args,
           QTextStream &err)
{
    if (args.size() != 2) {
        PrintError(err, args.size() < 2 ? QStringLiteral("delete needs a key")
                                        : QStringLiteral("delete takes one key"));
        return 2;
    }
    store.appSynchronize(AppIdentifier);
    if (!store.copyAppValue(args.at(1), AppIdentifier).isValid()) {
        PrintError(err, MissingKeyMessage(args.at(1)));
        return 2;
    }
    store.setAppValue(args.at(1), QVariant(), AppIdentifier);
    return SaveAndAnnounce(store, center, err);
}

const QString kDefaultsHelp = QStringLiteral(
    "Usage: horalo defaults read [KEY]\n"
    "       horalo defaults write KEY -TYPE VALUE\n"
    "       horalo defaults write KEY -array [VALUE...]\n"
    "       horalo defaults delete KEY\n"
    "\n"
    "Reads and writes Horalo's settings file. A write or delete tells a running Horalo to\n"
    "rebuild its menu at once.\n"
    "\n"
    "Types:\n"
    "  -bool      true, false, yes, no, 1 or 0\n"
    "  -int       a whole number\n"
    "  -float     a number\n"
    "  -string    text\n"
    "  -date      ISO 8601 with an offset or Z\n"
    "  -array     any number of strings\n"
    "\n"
    "Examples:\n"
    "  horalo defaults write menuTitleFormatter -string \"%a %H:%M\"\n"
    "  horalo defaults write IncludeTimeOnlyItems -bool yes\n"
    "  horalo defaults delete menuTitleFormatter\n");

} // namespace

int RunDefaultsCommandOn(PreferencesStore &store, DistributedNotificationCenter *center,
                         const QStringList &args, QTextStream &out, QTextStream &err)
{
    const QString verb = args.value(0);
    int status = 2;
    if (verb == u"read")
        status = Read(store, args, out, err);
    else if (verb == u"write")
        status = Write(store, center, args, err);
    else if (verb == u"delete")
        status = Delete(store, center, args, err);
    else
        PrintError(err, verb.isEmpty() ? QStringLiteral("defaults needs read, write or delete")
                                       : kUnknownVerb.arg(verb));
    // A damaged file read as empty, or kept aside by this write: the user should know.
    const QString problem = store.takeProblem();
    if (!problem.isEmpty())
        PrintError(err, problem);
    return status;
}

int RunDefaultsCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    // Help is the one option, and only before the verb: after it, the type flags and values
    // are single-dash words of the verb's own grammar.
    CommandParser parser(kDefaultsHelp);
    parser.setUnknownOptionMessage(kUnknownVerb);
    if (const std::optional<int> status = parser.parse(args, out, err))
        return *status;
    const QStringList words = parser.positional();
    const QString verb = words.value(0);
    PlistPreferencesStore store;
    if (verb != u"write" && verb != u"delete")
        return RunDefaultsCommandOn(store, nullptr, words, out, err);

    const CommandApplication application;
    DBusNotificationCenter center;
    const int status = RunDefaultsCommandOn(store, &center, words, out, err);
    // Let the bus pass the broadcast on before this process, and its connection, go away.
    center.flush(kBroadcastFlushMs);
    return status;
}
