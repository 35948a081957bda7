#pragma once

#include "examples/sketchbook/model/Finding.h"
#include "examples/sketchbook/model/Task.h"

#include <QCheckBox>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QStringListModel>
#include <QWidget>
#include <optional>

namespace sketchbook {

/// Finds and replaces in the labels, and completes the words that stand in them, which it collects
/// in the background.
class FindPanel : public QWidget {
 public:
  FindPanel(const NSRef<Drawing>& drawing, const dispatch_queue_t& queue);
  ~FindPanel() override;

  /// Is called with each task that begins.
  std::function<void(const NSRef<Task>&)> onTask;
  void takeFocus();
  void findNext();
  void replaceAll();

 private:
  NSRef<ZKTextFinder> finder() const;
  void collectWords();

  NSRef<Drawing> _drawing;
  dispatch_queue_t _queue;
  std::optional<LabelMatch> _match;
  NSRef<NSArray> _collected;
  NSRef<Task> _collecting;
  QLineEdit* _needle = new QLineEdit;
  QLineEdit* _replacement = new QLineEdit;
  QCheckBox* _respectsCase = new QCheckBox;
  QCheckBox* _wholeWords = new QCheckBox;
  QCheckBox* _isPattern = new QCheckBox;
  QLabel* _answer = new QLabel;
  QStringListModel* _words = new QStringListModel(this);
  NSObservation _observation;
};

}  // namespace sketchbook
