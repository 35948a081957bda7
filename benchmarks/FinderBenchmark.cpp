#include "benchmarks/Support.h"
#include "benchmarks/TextSamples.h"

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QRegularExpression>
#include <QString>
#endif

namespace {

std::u16string replacedByFinding(const std::u16string& text, const std::u16string& needle,
                                 std::u16string_view replacement) {
  std::u16string edited;
  std::size_t from = 0;
  for (std::size_t at = 0; (at = text.find(needle, from)) != std::u16string::npos;) {
    edited.append(text, from, at - from).append(replacement);
    from = at + needle.size();
  }
  return edited.append(text, from);
}

// Finds the needle of a text from a selection on, and replaces all of the text's most frequent one.
void addFinder(const Language& language, const std::string& size, std::size_t length) {
  std::u16string text = makeText(length, 90, language.rare, language.letters);
  const std::size_t place = length - 20;
  text.replace(place, language.needle.size(), language.needle);
  const auto string = NSMake<NSString>(text);
  const std::u16string needle(language.needle);
  const auto finder = NSMake<ZKTextFinder>(NSMake<NSString>(needle), NSLiteralSearch);
  const auto isRight = [=](auto found) { return static_cast<std::size_t>(found) == place; };
  const std::string name = std::string(language.name).append("_").append(size);
  addRow(
      "FindNext/" + name + "/ZK",
      [=] {
        return finder->nextMatchInString_selectedRange(string, {2, 3})->match.location;
      },
      isRight);
  addRow(
      "FindNext/" + name + "/std", [=] { return text.find(needle, 5); }, isRight);

  const std::u16string often(1, text[0]);
  const std::u16string expected = replacedByFinding(text, often, u"xyz");
  const auto letter = NSMake<ZKTextFinder>(NSMake<NSString>(often), NSLiteralSearch);
  addRow(
      "ReplaceAll/" + name + "/ZK",
      [=] {
        auto edited = NSMake<NSMutableString>(text);
        (void)letter->replaceAllInString_withString_selectedRange(edited, u"xyz"_ns);
        return edited;
      },
      [=](const auto& edited) { return edited->view() == expected; });
  addRow(
      "ReplaceAll/" + name + "/std", [=] { return replacedByFinding(text, often, u"xyz"); },
      [=](const std::u16string& edited) { return edited == expected; });
  const auto words = NSMake<ZKTextFinder>(u"(\\w)(\\w+)"_ns, ZKRegularExpressionSearch);
  const std::size_t count = words->matchesInString(string).size();
  addRow(
      "FindPattern/" + name + "/ZK", [=] { return words->matchesInString(string).size(); },
      [=](std::size_t found) { return found == count; });
#ifdef ZK_HAS_QT
  const QString qtText = QString::fromStdU16String(text);
  const QString qtNeedle = QString::fromStdU16String(needle);
  addRow(
      "FindNext/" + name + "/Qt", [=] { return qtText.indexOf(qtNeedle, 5); }, isRight);
  addRow(
      "ReplaceAll/" + name + "/Qt",
      [=] {
        QString edited = qtText;
        return edited.replace(QString::fromStdU16String(often), QStringLiteral("xyz"));
      },
      [=](const QString& edited) { return edited.toStdU16String() == expected; });
  const QRegularExpression pattern(QStringLiteral("(\\w)(\\w+)"),
                                   QRegularExpression::UseUnicodePropertiesOption);
  addRow(
      "FindPattern/" + name + "/Qt",
      [=] {
        std::vector<std::pair<qsizetype, qsizetype>> found;
        for (auto each = pattern.globalMatch(qtText); each.hasNext();) {
          const auto match = each.next();
          found.emplace_back(match.capturedStart(), match.capturedLength());
        }
        return found.size();
      },
      // What counts as part of a word differs a little, as do the marks of Hindi.
      [=](std::size_t found) { return found > 0; });
#endif
}

const bool registered = [] {
  for (const Language& language : languages) {
    addFinder(language, "line", lineLength);
    addFinder(language, "1Mi", longLength);
  }
  return true;
}();

}  // namespace
