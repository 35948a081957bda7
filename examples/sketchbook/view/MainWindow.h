#pragma once

#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/view/Canvas.h"
#include "examples/sketchbook/view/FindPanel.h"
#include "examples/sketchbook/view/Inspector.h"
#include "examples/sketchbook/view/TaskBar.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <functional>
#include <map>
#include <string>

namespace sketchbook {

/// The window of a document: menus, the canvas, and panels at its sides. It deletes itself when it
/// is closed.
class MainWindow : public QMainWindow {
 public:
  explicit MainWindow(const NSRef<Document>& document);
  ~MainWindow() override;

  /// Gives the folder for copies of unsaved work.
  static NSRef<NSURL> recoveryFolder();
  /// Shows the document in a window of its own, which deletes itself.
  static MainWindow* showWindow(const NSRef<Document>& document);
  /// Opens the document in a window of its own; null when it cannot be opened, which the parent
  /// tells.
  static MainWindow* openWindow(const NSRef<NSURL>& url, QWidget* parent);
  /// Asks what to do with work that a crash has left behind.
  static void offerRecovery();
  static void showError(QWidget* parent, const NSRef<NSError>& error);

  Canvas& canvas() { return *_canvas; }
  const NSRef<Document>& document() const { return _document; }
  /// Does what the item of a menu does, named by its text in the program.
  void trigger(const NSRef<NSString>& item);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  using Action = std::function<void()>;
  // Writes a picture of the shapes; gives what went wrong, if that is an error.
  using Export = std::function<NSRef<NSObject>(const NSRef<NSURL>&, const NSRef<NSArray>& shapes,
                                               const Progress&)>;

  void makeFileMenu();
  void makeEditMenu();
  void makeArrangeMenu();
  void makeViewMenu();
  void makeTools();
  QAction* add(QMenu* menu, const NSRef<NSString>& text, const QKeySequence& keys, Action action);
  QDockWidget* addPanel(const NSRef<NSString>& title, QWidget* panel);
  void showState();

  bool save();
  bool saveAs();
  bool report(bool isDone, const NSRef<NSError>& error);
  bool askToOverwrite(const NSRef<NSError>& error);
  void copy();
  void paste();
  void attach();
  void exportTo(const NSRef<NSString>& title, const QString& extension, Export work);
  void exportSVG();
  void exportPNG();

  NSRef<Document> _document;
  const dispatch_queue_t _queue = dispatch_queue_create("sketchbook", DISPATCH_QUEUE_SERIAL);
  Canvas* _canvas;
  FindPanel* _find;
  QDockWidget* _findDock;
  TaskBar* _tasks = new TaskBar;
  QAction* _undo = nullptr;
  QAction* _redo = nullptr;
  QList<QAction*> _tools;
  NSRef<Task> _export;
  std::map<std::u16string, QAction*, std::less<>> _items;
  NSObservation _observation;
};

}  // namespace sketchbook
