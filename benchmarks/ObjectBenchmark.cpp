#include "benchmarks/Support.h"

#include <memory>

#include <ZKFoundation/ZKFoundation.h>

namespace {

struct Point3 {
  explicit Point3(double first) : x(first) {}
  virtual ~Point3() = default;
  double x;
  double y = 0;
  double z = 0;
};

struct Point3Object : NSObject {
  explicit Point3Object(double first) : x(first) {}
  double x;
  double y = 0;
  double z = 0;
};

const bool registered = [] {
  const auto isMade = [](const auto& object) { return object->x == 1.0; };
  addRow(
      "Object/MakeAndRelease/ZK", [] { return NSMake<Point3Object>(1.0); }, isMade);
  addRow(
      "Object/MakeAndRelease/make_shared", [] { return std::make_shared<Point3>(1.0); }, isMade);

  auto object = NSMake<Point3Object>(1.0);
  auto shared = std::make_shared<Point3>(1.0);
  addRow(
      "Object/Share/ZK", [=] { return object; }, isMade);
  addRow(
      "Object/Share/make_shared", [=] { return shared; }, isMade);
  return true;
}();

}  // namespace
