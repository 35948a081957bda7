#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/model/Shapes.h"
#include "tests/Files.h"
#include "tests/RunLoops.h"

using namespace sketchbook;
using namespace std::chrono_literals;

namespace {

class SketchbookDocument : public testing::Test {
 protected:
  SketchbookDocument() {
    NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"en_GB"_ns));
  }
  ~SketchbookDocument() override { NSLocale::setCurrentLocale(nullptr); }

  static void draw(const NSRef<Document>& document, const char* text) {
    document->drawing()->add(
        u"Add"_ns,
        NSMake<NSArray>({NSMake<Label>(u"Label"_ns, NSRect({0, 0}, {90, 20}), string(text))}));
    makePass();
  }
  NSRef<Document> open() { return Document::open(place, copies, &error); }
  std::string sentence() const { return error ? error->localizedDescription()->utf8() : ""; }
  NSRef<Document> saved(const char* text) {
    auto document = NSMake<Document>(copies);
    draw(document, text);
    EXPECT_TRUE(document->saveAs(place, &error)) << sentence();
    return document;
  }

  TestFolder folder;
  DrivenClock clock;
  const NSRef<NSURL> place = fileURL(folder / "Plan.sketch");
  const NSRef<NSURL> copies = fileURL(folder / "copies");
  NSRef<NSError> error;
};

}  // namespace

TEST_F(SketchbookDocument, comesBackWithAllThatIsInIt) {
  const auto document = saved("first");
  EXPECT_FALSE(document->isEdited());
  writeFile(folder / "note.txt", "with it");
  const auto note = fileURL(folder / "note.txt");
  EXPECT_EQ(shown(document->attach(note, &error)), "note.txt");
  EXPECT_EQ(shown(document->attach(note, &error)), "note 2.txt");
  writeFile(folder / "Plan.sketch/unknown", "kept, if it was there when it was opened");
  EXPECT_TRUE(document->isEdited() && document->save(&error)) << sentence();
  writeFile(folder / "Plan.sketch/unknown", "kept");

  const auto opened = open();
  draw(opened, "second");
  EXPECT_TRUE(opened->save(&error)) << sentence();
  const auto again = open();
  EXPECT_EQ(again->drawing()->shapes(), opened->drawing()->shapes());
  EXPECT_EQ(shown(again->attachmentNames()), "(note 2.txt, note.txt)");
  EXPECT_EQ(contentsOf(folder / "Plan.sketch/unknown"), "kept");
  EXPECT_EQ(again->byteCount(), opened->byteCount());
  EXPECT_EQ(shown(again->title()), "Plan");
}

TEST_F(SketchbookDocument, isNotWrittenOverWhatOthersHaveWritten) {
  const auto mine = saved("mine");
  const auto yours = open();
  draw(yours, "yours");
  EXPECT_TRUE(yours->save(&error)) << sentence();
  draw(mine, "mine again");
  EXPECT_FALSE(mine->save(&error));
  EXPECT_EQ(error->code(), DocumentChangedElsewhere);
  EXPECT_EQ(sentence(), "“Plan.sketch” has been changed elsewhere since it was opened.");
  EXPECT_EQ(open()->drawing()->shapes(), yours->drawing()->shapes());
  EXPECT_TRUE(mine->isEdited() && mine->save(&error, true)) << sentence();
  fs::remove_all(folder / "Plan.sketch");
  EXPECT_TRUE(mine->save(&error)) << sentence();

  fs::create_directory(folder / "photos");
  EXPECT_FALSE(mine->saveAs(fileURL(folder / "photos"), &error));
  EXPECT_EQ(sentence(), "“photos” is no sketchbook.");
}

TEST_F(SketchbookDocument, tellsWhatCannotBeOpened) {
  EXPECT_FALSE(open());
  EXPECT_TRUE(ZKFoundationExtensions::isFileNotFoundError(error));
  const Rows<const char*, const char*, DocumentError> rows = {
      {"format", "Sketchbook 2\nA\n", DocumentIsNewer},
      {"format", "Sketchbook\n", DocumentIsForeign},
      {"format", "Sketchbook 1", DocumentIsForeign},
      {"format", "\xFF", DocumentIsForeign},
      {"format", "", DocumentIsForeign},
      {"drawing", "", DocumentIsDamaged},
      {"drawing", "bplist00", DocumentIsDamaged},
  };
  for (const auto& [name, bytes, code] : rows) {
    (void)saved("text");
    writeFile(folder / "Plan.sketch" / name, bytes);
    EXPECT_FALSE(open()) << bytes;
    EXPECT_EQ(error->code(), code) << sentence();
    fs::remove_all(folder / "Plan.sketch");
  }
  // Whatever bytes are damaged, it is a drawing or a sentence, and never a crash.
  (void)saved("text");
  const std::string whole = contentsOf(folder / "Plan.sketch/drawing");
  expectProperty("damage is noticed or harmless", [&] {
    std::string bytes = whole;
    bytes.resize(*rc::gen::inRange<std::size_t>(bytes.size() / 2, bytes.size() + 1));
    for (const auto at : *rc::gen::container<std::vector<std::size_t>>(
             rc::gen::inRange<std::size_t>(0, bytes.size()))) {
      bytes[at] = *rc::gen::arbitrary<char>();
    }
    NSRef<NSError> reason;
    RC_ASSERT(shapesWithData(NSMake<NSData>(bytes), &reason) || reason);
  });
}

TEST_F(SketchbookDocument, isCopiedWhenNothingChangesForAWhile) {
  auto document = saved("first");
  const auto advance = [&](std::chrono::seconds time) {
    clock.advance(time);
    makePass();
  };
  draw(document, "second");
  advance(Document::autosaveDelay - 1s);
  draw(document, "third");
  advance(Document::autosaveDelay - 1s);
  EXPECT_FALSE(fs::exists(folder / "copies"));
  advance(1s);
  EXPECT_TRUE(fs::exists(folder / "copies"));
  // The document is open: nothing was left behind.
  EXPECT_EQ(Recovery::abandoned(copies)->count(), 0U);

  const auto unsaved = document->drawing()->shapes();
  document = nullptr;
  const auto left = Recovery::abandoned(copies);
  ASSERT_EQ(left->count(), 1U);
  const auto copy = left[0].as<NSURL>();
  const auto recovered = Document::recover(copy, copies, &error);
  EXPECT_EQ(recovered->drawing()->shapes(), unsaved);
  EXPECT_EQ(recovered->url(), place);
  EXPECT_FALSE(Document::recover(copy, copies, &error));
  EXPECT_TRUE(recovered->isEdited() && recovered->save(&error)) << sentence();
  EXPECT_FALSE(fs::exists(folder / "Plan.sketch/origin"));
  EXPECT_EQ(open()->drawing()->shapes(), unsaved);
  recovered->close();
  EXPECT_EQ(namesIn(folder / "copies"), std::set<std::string>());
}
