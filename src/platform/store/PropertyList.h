#pragma once

#include <QByteArray>
#include <QStringView>
#include <QVariant>
#include <QVariantMap>

#include <optional>

// Property lists as QVariant trees. The types the store keeps map one to one onto the
// property-list types:
//
//   bool <-> true/false          qlonglong <-> integer     double <-> real
//   QString <-> string           QDateTime (UTC) <-> date  QByteArray <-> data
//   QVariantList <-> array       QVariantMap <-> dict
//
// Integers above the range of qlonglong read as qulonglong. A binary list's UID (only found in
// keyed archives) reads as a dictionary {"CF$UID": n}, the way XML lists spell it.

// The value as the store keeps it: integers widened to qlonglong, floats to double, string
// lists to QVariantList, hashes to maps, dates in UTC cut to the whole second (an XML property
// list has no finer unit). std::nullopt for a value no property list can hold; elements of a
// list or dictionary that none can hold are dropped.
std::optional<QVariant> NormalizedPropertyListValue(const QVariant &value);

// Whether an XML property list carries the text exactly: no control characters but tab, line
// feed and carriage return, no U+FFFE or U+FFFF, no unpaired surrogates.
bool PropertyListCanKeepText(QStringView text);

// The first string in the value, dictionary keys included, that PropertyListCanKeepText()
// refuses; std::nullopt when the whole value can be kept.
std::optional<QString> FirstTextPropertyListCannotKeep(const QVariant &value);

// Parses an XML or binary ("bplist00") property list. std::nullopt when the bytes are not a
// well-formed property list.
std::optional<QVariant> ParsePropertyList(const QByteArray &bytes);

// The dictionary as an XML property list, UTF-8, tab-indented; std::nullopt when it holds text
// XML cannot carry exactly (see PropertyListCanKeepText()). Values are expected in normalised
// form.
std::optional<QByteArray> PropertyListToXml(const QVariantMap &dictionary);
