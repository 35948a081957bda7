#pragma once

#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/view/Bridge.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

namespace sketchbook {

/// Shows and changes the name and the address of what is selected, and tells the size of the
/// document and its attachments.
class Inspector : public QWidget {
 public:
  explicit Inspector(const NSRef<Document>& document);

 private:
  void showSelection();
  void showSize();
  void readLink(const QString& typed);
  void takeLink();

  NSRef<Document> _document;
  const NSRef<ZKURLFormatter> _addresses = NSMake<ZKURLFormatter>();
  NSRef<NSObject> _link;
  QLineEdit* _name = new QLineEdit;
  QLineEdit* _address = new QLineEdit;
  QLabel* _refusal = new QLabel;
  QPushButton* _open = new QPushButton;
  QLabel* _size = new QLabel;
  QLabel* _attachments = new QLabel;
  const NSRef<WidgetLife> _life = NSMake<WidgetLife>();
  NSRef<NSBlock> _laterSize;
  NSObservation _observation;
};

}  // namespace sketchbook
