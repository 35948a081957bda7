#pragma once

#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/view/FindPanel.h"

#include <unordered_map>

namespace sketchbook {

/// The window of a document: menus, the canvas, and panels at its sides. It deletes itself when it
/// is closed.
class MainWindow : public QMainWindow {
 public:
  explicit MainWindow(const NSRef<Document>& document);

  /// Gives the folder for copies of unsaved work.
  static NSRef<NSURL> recoveryFolder();
  /// Shows the document in a window of its own, which deletes itself.
  static MainWindow* showWindow(const NSRef<Document>& document);
  /// Opens the document in a window of its own; null when it cannot be opened, which the parent
  /// tells.
  static MainWindow* openWindow(const NSRef<NSURL>& url, QWidget* parent);
  /// Asks what to do with work that a crash has left behind, and whether any of it was opened.
  static bool offerRecovery();

  Canvas& canvas() { return *_canvas; }
  /// Does what the item of a menu does, named by its text in the program.
  void trigger(const NSRef<NSString>& item) { _items.at(item)->trigger(); }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  // An item of a menu; one without a text is a line between others.
  struct Item {
    NSRef<NSString> text;
    QKeySequence keys;
    std::function<void()> action;
    // So many shapes must be selected.
    NSUInteger least = 0;
    // It turns something off, which is on at first, and on again.
    bool isSwitch = false;
  };
  // Gives the bytes of a picture, on any thread; nil when the progress said to stop.
  using Export = NSRef<NSData> (*)(const NSRef<NSArray>& shapes, const Progress&);

  void makeMenus();
  QMenu* makeMenu(const NSRef<NSString>& title, std::initializer_list<Item> items);
  QDockWidget* addPanel(const NSRef<NSString>& title, QWidget* panel);
  void makeToolBars();
  void showState();

  void open();
  bool save(bool overwrites = false);
  bool saveAs();
  bool report(bool isDone, const NSRef<NSError>& error);
  NSRef<NSURL> askForPlace(const NSRef<NSString>& title, const QString& extension);
  void attach();
  void copy();
  void paste();
  void exportTo(const NSRef<NSString>& title, const QString& extension, Export draw);

  NSRef<Document> _document;
  TaskBar* _tasks = new TaskBar;
  Canvas* _canvas;
  FindPanel* _find;
  QDockWidget* _inspectorPanel;
  QDockWidget* _shapesPanel;
  QDockWidget* _findPanel;
  QLabel* _zoom = new QLabel;
  std::unordered_map<NSRef<NSString>, QAction*> _items;
  QList<QAction*> _tools;
  const NSObservation _observation{DrawingDidChange(), _document->drawing(),
                                   [this] { showState(); }};
};

}  // namespace sketchbook
