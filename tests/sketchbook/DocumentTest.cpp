#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/model/Pictures.h"
#include "examples/sketchbook/model/Sample.h"
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

  // Changes the document and waits until that is copied.
  void drawUnsaved(const NSRef<Document>& document) {
    draw(document, "unsaved");
    clock.advance(Document::autosaveDelay);
    makePass();
  }
  // What was read can be drawn, pointed at, saved and read again.
  static void expectIsSane(const Document& document) {
    const auto shapes = document.drawing()->shapes();
    const NSRect frame = frameAround(shapes);
    EXPECT_TRUE(std::isfinite(NSMaxX(frame)) && std::isfinite(NSMaxY(frame))) << frame;
    EXPECT_LE(document.drawing()->indexOfShapeAt({NSMidX(frame), NSMidY(frame)}, 3), NSNotFound);
    // A million equal ones would take long.
    const auto some = shapes->subarrayWithRange({0, std::min(shapes->count(), NSUInteger{100})});
    for (const auto& word : {u"nan"_ns, u"inf"_ns}) {
      EXPECT_EQ(svgPicture(some)->rangeOfString(word).length, 0U) << shown(word);
    }
    EXPECT_EQ(shapesWithData(dataWithShapes(some), nullptr), some);
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
  fs::remove_all(folder / "Plan.sketch/Attachments");
  writeFile(folder / "Plan.sketch/Attachments", "a file");
  EXPECT_FALSE(open()->attach(note, &error));
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
  const auto archive = [](const NSRef<NSObject>& shape, NSUInteger count = 1) {
    const auto shapes = NSMake<NSMutableArray>();
    while (shapes->count() < count) shapes->addObject(shape);
    return std::string(NSKeyedArchiver::archivedDataWithRootObject(shapes)->view());
  };
  const auto framed = [&](double x, double width) {
    return archive(NSMake<Rectangle>(u"A"_ns, NSRect({x, 0}, {width, 1})));
  };
  const auto longText = [](char16_t unit) {
    return NSMake<NSString>(std::u16string(100'000, unit));
  };
  const Rows<const char*, std::string, NSInteger> rows = {
      {"format", "Sketchbook 2\nA\n", DocumentIsNewer},
      {"format", "Sketchbook 1\nA\n", 0},
      {"format", "Sketchbook\n", DocumentIsForeign},
      {"format", "Sketchbook 1", DocumentIsForeign},
      {"format", "\xFF", DocumentIsForeign},
      {"drawing", "bplist00", DocumentIsDamaged},
      {"drawing", archive(u"no shape"_ns), DocumentIsDamaged},
      {"drawing", framed(NAN, 1), DocumentIsDamaged},
      {"drawing", framed(0, INFINITY), DocumentIsDamaged},
      {"drawing", framed(1e300, 1e300), 0},
      {"drawing", framed(-1e300, -1e300), 0},
      {"drawing", archive(NSMake<Label>(longText(u'ß'), NSMakeRect(0, 0, 9, 9), longText(u'\n'))),
       0},
      {"drawing", archive(NSMake<Path>(u"A"_ns, std::vector<NSPoint>{{0, -1e300}, {0, 1e300}})), 0},
      {"drawing", archive(NSMake<Label>(u"A"_ns, NSZeroRect, u"B"_ns), 1'000'000), 0},
  };
  for (const auto& [name, bytes, code] : rows) {
    (void)saved("text");
    writeFile(folder / "Plan.sketch" / name, bytes);
    error = nullptr;
    const auto document = open();
    EXPECT_EQ(error ? error->code() : 0, code) << sentence();
    if (document) expectIsSane(*document);
    fs::remove_all(folder / "Plan.sketch");
  }
}

TEST_F(SketchbookDocument, opensOrTellsWhyNotWhateverIsDamaged) {
  ASSERT_TRUE(NSMake<Document>(copies, sampleShapes())->saveAs(place, &error));
  for (const char* const name : {"format", "drawing", "preview.svg"}) {
    const fs::path file = folder / "Plan.sketch" / name;
    const std::string whole = contentsOf(file);
    for (std::size_t at = 0; at < whole.size(); ++at) {
      std::string other = whole;
      other[at] = static_cast<char>(random());
      for (const std::string& bytes : {whole.substr(0, at), other}) {
        // File systems wait for the disk when a file is written over.
        fs::remove(file);
        writeFile(file, bytes);
        const auto document = open();
        ASSERT_TRUE(document || sentence().ends_with('.')) << name << at << sentence();
        if (document) expectIsSane(*document);
      }
    }
  }
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

TEST_F(SketchbookDocument, offersWhatIsOfUseAndLosesNothing) {
  const auto left = [&] { return Recovery::abandoned(copies)->count(); };
  const auto copy = [&] { return fs::begin(fs::directory_iterator(folder / "copies"))->path(); };
  // Who was killed after saving has left an old copy.
  auto document = saved("first");
  drawUnsaved(document);
  fs::copy(folder / "copies", folder / "old", fs::copy_options::recursive);
  EXPECT_TRUE(document->save(&error)) << sentence();
  fs::remove(folder / "copies");
  fs::rename(folder / "old", folder / "copies");
  EXPECT_EQ(left(), 0U);
  EXPECT_TRUE(fs::is_empty(folder / "copies"));

  drawUnsaved(document);
  document = nullptr;
  const Rows<const char*, DocumentError, NSUInteger> rows = {
      {"Sketchbook 2\nA\n", DocumentIsNewer, 1}, {"Sketch", DocumentIsDamaged, 0}};
  for (const auto& [format, code, isOffered] : rows) {
    writeFile(copy() / "copy.sketch/format", format);
    EXPECT_FALSE(Document::recover(Recovery::abandoned(copies)[0].as<NSURL>(), copies, &error));
    EXPECT_EQ(error->code(), code);
    EXPECT_EQ(left(), isOffered) << sentence();
  }
  EXPECT_TRUE(fs::exists(copy() / "copy.sketch/drawing"));
  EXPECT_EQ(sentence(), "What was not saved of “Plan.sketch” is damaged, and kept in “" +
                            copy().string() + "”.");
}
