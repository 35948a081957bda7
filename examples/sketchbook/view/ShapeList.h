#pragma once

#include "examples/sketchbook/model/Drawing.h"
#include "examples/sketchbook/view/Bridge.h"

#include <algorithm>

namespace sketchbook {

/// The names of shapes, those in front first. More than a thousand nobody reads, but screen readers
/// ask for all.
struct ShapeNames : QAbstractListModel {
  int rowCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : std::min(static_cast<int>(shapes->count()), 1000);
  }
  /// Gives the row of the shape at an index, and the index of the shape in a row.
  int turned(int place) const { return static_cast<int>(shapes->count()) - 1 - place; }
  QVariant data(const QModelIndex& index, int role) const override {
    const auto& shape = *shapes[static_cast<NSUInteger>(turned(index.row()))].as<Shape>();
    if (role == Qt::DecorationRole) return colourOf(shape.colour);
    // Names may be of any length.
    return role == Qt::DisplayRole ? toQt(shape.name).left(100) : QVariant();
  }
  void show(const NSRef<NSArray>& others) {
    const bool isAsLong = others->count() == shapes->count();
    if (!isAsLong) beginResetModel();
    shapes = others;
    if (!isAsLong) endResetModel();
  }

  NSRef<NSArray> shapes = NSMake<NSArray>();
};

/// Lists the shapes by name. What is selected in it is selected in the drawing,
/// and the other way round.
class ShapeList : public QListView {
 public:
  explicit ShapeList(const NSRef<Drawing>& drawing) : _drawing(drawing) {
    setObjectName(QStringLiteral("shapes"));
    setSelectionMode(ExtendedSelection);
    setIconSize({12, 12});
    setModel(&_names);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ShapeList::takeSelection);
    showShapes();
  }

 private:
  void showShapes() {
    _names.show(_drawing->shapes());
    QItemSelection selection;
    for (const NSRange range : _drawing->selection()->ranges()) {
      const int first = static_cast<int>(range.location);
      const int last = static_cast<int>(NSMaxRange(range)) - 1;
      const int bottom = std::min(_names.turned(first), _names.rowCount({}) - 1);
      selection.select(_names.index(_names.turned(last)), _names.index(bottom));
    }
    _isShowing = true;
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    _isShowing = false;
    if (!selection.isEmpty()) scrollTo(selection.first().topLeft());
    viewport()->update();
  }

  void takeSelection() {
    if (_isShowing) return;
    const auto selection = NSMake<NSMutableIndexSet>();
    for (const auto& rows : selectionModel()->selection()) {
      const auto first = static_cast<NSUInteger>(_names.turned(rows.bottom()));
      selection->addIndexesInRange({first, static_cast<NSUInteger>(rows.height())});
    }
    _drawing->select(selection);
  }

  NSRef<Drawing> _drawing;
  ShapeNames _names;
  bool _isShowing = false;
  const NSObservation _observation{DrawingDidChange(), _drawing, [this] { showShapes(); }};
};

}  // namespace sketchbook
