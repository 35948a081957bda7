#pragma once

#include "examples/sketchbook/model/Drawing.h"
#include "examples/sketchbook/view/Bridge.h"

namespace sketchbook {

/// The names of shapes, those in front first.
struct ShapeNames : QAbstractListModel {
  int rowCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : static_cast<int>(shapes->count());
  }
  /// Gives the row of the shape at an index, and the index of the shape in a row.
  int turned(int place) const { return rowCount({}) - 1 - place; }
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
    // So that a million of them need not be measured.
    setUniformItemSizes(true);
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
      selection.select(_names.index(_names.turned(last)), _names.index(_names.turned(first)));
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!selection.isEmpty()) scrollTo(selection.first().topLeft());
    viewport()->update();
  }

  void takeSelection() {
    const auto selection = NSMake<NSMutableIndexSet>();
    for (const auto& rows : selectionModel()->selection()) {
      const auto first = static_cast<NSUInteger>(_names.turned(rows.bottom()));
      selection->addIndexesInRange({first, static_cast<NSUInteger>(rows.height())});
    }
    if (selection != _drawing->selection()) _drawing->select(selection);
  }

  NSRef<Drawing> _drawing;
  ShapeNames _names;
  const NSObservation _observation{DrawingDidChange(), _drawing, [this] { showShapes(); }};
};

}  // namespace sketchbook
