#include <algorithm>
#include <compare>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

template <class Result>
void show(const char* what, const Result& result) {
  std::cout << what << ": " << result << '\n';
}

void texts() {
  const std::string name = "Löffel";
  const auto string = NSMake<NSString>(name);
  std::cout << name.size() << " bytes, " << string->length() << " units\n";
  show("back again", string->utf8() == name);
  show("the same text", string == "Löffel" && string == u"Löffel");
  // A view costs nothing; it is valid as long as the string is, and unchanged.
  show("letters f", std::ranges::count(string->view(), u'f'));
  show("damaged", NSMake<NSString>("L\xF6"
                                   "ffel"));
}

void sequences() {
  const std::vector<std::string> words = {"pear", "Apple", "fig"};
  const auto array = NSMake<NSMutableArray>();
  for (const auto& word : words) array->addObject(NSMake<NSString>(word));
  sortUsingSelector(array, &NSString::caseInsensitiveCompare);

  std::vector<std::string> back;
  for (const auto& word : array->each<NSString>()) back.push_back(word->utf8());
  show("sorted", back[0] + ' ' + back[1] + ' ' + back[2]);
  // Other references to the same objects; an array takes a vector of them over.
  std::vector<NSRef<NSObject>> objects(array->objects().begin(), array->objects().end());
  std::ranges::reverse(objects);
  show("turned round", NSMake<NSArray>(std::move(objects)));

  // The operations of sorted arrays take vectors of values, too.
  std::vector<int> numbers = {1, 3, 3, 7};
  const std::compare_three_way order;
  insertObject_inArraySortedUsingFunction(numbers, 5, order);
  show("inserted", numbers[3]);
  show("equal ones", equalRangeOfObject_inArraySortedUsingFunction(numbers, 3, order));
}

void tables() {
  const std::map<std::string, int> pages = {{"end", 2}, {"start", 30}};
  const auto dictionary = NSMake<NSMutableDictionary>();
  for (const auto& [title, count] : pages) {
    dictionary->setObject_forKey(NSMake<NSNumber>(count), NSMake<NSString>(title));
  }
  std::map<std::string, int> back;
  for (const auto& [title, count] : dictionary) {
    back[title.as<NSString>()->utf8()] = count.as<NSNumber>()->intValue();
  }
  show("the same table", back == pages);
  // References are keys by what they refer to.
  const std::unordered_set<NSRef<NSString>> seen = {u"a"_ns, NSMake<NSString>("a"), u"b"_ns};
  show("texts", seen.size());
}

void functions() {
  const auto array = NSMake<NSArray>({u"a"_ns, u"b"_ns});
  int count = 0;
  const std::function<void(const NSRef<NSObject>&)> note = [&](const auto&) { ++count; };
  makeObjectsPerformBlock(array, note);
  show("called", count);
  // What outlives the call moves into the request.
  std::function<void()> later = [text = u"later"_ns] { show("never", text); };
  const auto request = performBlock_afterDelay(array, std::move(later), 60);
  show("cancelled", cancelDelayedBlock(array, request) == ZKCancellation::cancelled);
  // A block object is called through a reference to it.
  const NSRef<NSBlock> block =
      NSMakeBlock<NSString>([](const NSString& string) { show("length", string.length()); });
  const std::function<void(const NSRef<NSString>&)> call = [block](const auto& string) {
    block->invoke(string);
  };
  call(u"four"_ns);
}

// An object around what is none.
template <class T>
struct Box : NSObject {
  explicit Box(T aValue) : value(std::move(aValue)) {}
  T value;
};

void values() {
  using Numbers = Box<std::vector<int>>;
  const auto array = NSMake<NSArray>({NSMake<Numbers>(std::vector{1, 2, 3})});
  for (const auto& box : array->each<Numbers>()) show("in a box", box->value.size());
  try {
    (void)array[1];
  } catch (const std::exception& error) {
    std::cout << error.what() << '\n';
  }
}

}  // namespace

int main() {
  std::cout << std::boolalpha;
  for (const auto part : {texts, sequences, tables, functions, values}) part();
}
