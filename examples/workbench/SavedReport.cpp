#include "examples/workbench/SavedReport.h"

#include <filesystem>
#include <stdexcept>

using namespace ZKFoundationExtensions;

namespace {

NSRef<NSFileWrapper> folderNamed(const NSRef<NSString>& name) {
  auto folder = NSMake<NSFileWrapper>(NSMake<NSDictionary>());
  folder->setPreferredFilename(name);
  return folder;
}

NSRef<NSFileWrapper> fileNamed(const NSRef<NSString>& name, const std::string& text) {
  auto file = NSMake<NSFileWrapper>(NSMake<NSData>(text));
  file->setPreferredFilename(name);
  return file;
}

NSUInteger fileCount(const NSRef<NSFileWrapper>& wrapper) {
  if (wrapper->isRegularFile()) return 1;
  NSUInteger count = 0;
  for (const auto& entry : wrapper->fileWrappers()) {
    count += fileCount(entry.second.as<NSFileWrapper>());
  }
  return count;
}

[[noreturn]] void fail(const NSRef<NSError>& error) {
  throw std::runtime_error(error->description()->utf8());
}

}  // namespace

void saveAndOpen(std::ostream& out, const std::vector<Section>& sections,
                 const std::vector<NSRef<Document>>& documents) {
  const auto report = folderNamed(u"Report"_ns);
  for (const Section& section : sections) {
    addFileWrapperWithUniqueFileName(
        report, fileNamed(NSMake<NSString>(section.title + ".txt"), section.text));
  }
  // All in one folder, so that of equal names only the first stays as it is.
  const auto texts = folderNamed(u"Texts"_ns);
  NSUInteger renamed = 0;
  for (const auto& document : documents) {
    const auto name = document->name()->lastPathComponent();
    const auto key =
        addFileWrapperWithUniqueFileName(texts, fileNamed(name, document->text()->utf8()));
    if (!key->isEqualToString(name)) ++renamed;
  }
  report->addFileWrapper(texts);

  NSRef<NSError> error;
  const auto place = temporaryFolder()->URLByAppendingPathComponent_isDirectory(
      u"Workbench "_ns->stringByAppendingString(UUIDString()), true);
  if (!report->writeToURL_options_originalContentsURL_error(place, 0, nullptr, &error)) fail(error);
  const auto opened = NSFileWrapper::initWithURL_options_error(place, 0, &error);
  std::filesystem::remove_all(place->fileSystemPath());
  if (!opened) fail(error);
  out << "  saved " << fileCount(report) << " files, of which " << renamed
      << " got another name, as " << place->path() << "\n  opened " << fileCount(opened)
      << " files again: " << opened << '\n';
}
