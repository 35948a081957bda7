#pragma once

#include "examples/workbench/Document.h"

#include <ostream>

#include <ZKFoundation/ZKFoundation.h>

/// Documents, kept in order as they are found.
class Shelf {
 public:
  void add(const NSRef<Document>& document);

  /// By title, without regard to letter case; those without one come first.
  const NSRef<NSMutableArray>& byTitle() const { return _byTitle; }
  /// The longest texts first.
  const NSRef<NSMutableArray>& bySize() const { return _bySize; }
  /// Sets of documents by the extensions of their names.
  const NSRef<NSMutableDictionary>& byKind() const { return _byKind; }

  /// A few lines of what stands where.
  void print(std::ostream& out) const;

 private:
  NSRef<NSMutableArray> _byTitle = NSMake<NSMutableArray>();
  NSRef<NSMutableArray> _bySize = NSMake<NSMutableArray>();
  NSRef<NSMutableDictionary> _byKind = NSMake<NSMutableDictionary>();
};
