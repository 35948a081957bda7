#include "benchmarks/Support.h"
#include "benchmarks/TextSamples.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <unicode/unistr.h>
#include <unistd.h>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QFile>
#include <QString>
#endif

namespace {

namespace fs = std::filesystem;

// A file that goes with its last user.
class TextFile {
 public:
  explicit TextFile(const std::string& bytes)
      : _path(fs::temp_directory_path() /
              ("zk-benchmark-" + std::to_string(getpid()) + '-' + std::to_string(bytes.size()))) {
    std::ofstream(_path, std::ios::binary) << bytes;
  }
  TextFile(const TextFile&) = delete;
  ~TextFile() {
    std::error_code error;
    fs::remove(_path, error);
  }

  [[nodiscard]] const fs::path& path() const { return _path; }

 private:
  fs::path _path;
};

void addReading(const char* name, const std::string& bytes) {
  const std::string row = std::string("File/ReadString_10M_") + name + '/';
  const auto file = std::make_shared<const TextFile>(bytes);
  const std::u16string expected(NSUnitsFromUTF8(bytes).view());
  addRow(
      row + "ZK",
      [path = NSMake<NSString>(file->path().native())] {
        return NSString::stringWithContentsOfFile_usedEncoding_error(path, nullptr, nullptr);
      },
      [=](const auto& text) { return text == expected; });
  addRow(
      row + "ifstream+ICU",
      [=] {
        std::string content(fs::file_size(file->path()), '\0');
        std::ifstream(file->path(), std::ios::binary)
            .read(content.data(), static_cast<std::streamsize>(content.size()));
        return icu::UnicodeString::fromUTF8(content);
      },
      [=](const icu::UnicodeString& text) {
        return std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length())) ==
               expected;
      });
#ifdef ZK_HAS_QT
  addRow(
      row + "Qt",
      [=] {
        QFile content(file->path());
        return content.open(QIODevice::ReadOnly) ? QString::fromUtf8(content.readAll()) : QString();
      },
      [=](const QString& text) { return text.toStdU16String() == expected; });
#endif
}

const bool registered = [] {
  constexpr std::size_t size = 10'000'000;
  const std::string ascii = NSUTF8FromUnits(makeText(size, 0, 0));
  addReading("ascii", ascii);
  // A paragraph of each language in turn.
  std::string mixed;
  while (mixed.size() < size) {
    for (const Language& language : languages) {
      mixed += NSUTF8FromUnits(makeText(1000, 90, language.rare, language.letters)) + '\n';
    }
  }
  addReading("mixed", mixed);
  return true;
}();

}  // namespace
