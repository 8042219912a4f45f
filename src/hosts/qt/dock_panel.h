// A docking panel of the editor window: a view (the class view) under a title bar with
// its buttons, beside the editor on one of its four sides with a splitter between them.
// The title bar's buttons move the panel to another side, collapse it to a strip of the
// title bar (and expand it again), and close it; View > Class View shows it again.
//
// Main thread only, like every widget.
#pragma once

#include <QFrame>
#include <QWidget>

class QLabel;
class QSplitter;
class QToolButton;

namespace velmora {

enum class TDockSide { Left, Right, Top, Bottom };

/// "Left", "Right", "Top", "Bottom".
const char* DockSideName(TDockSide side);

class TDockPanel : public QFrame {
  Q_OBJECT

 public:
  TDockPanel(const QString& title, QWidget* content, QWidget* parent = nullptr);

  QWidget* Content() const { return content_; }
  bool Collapsed() const { return collapsed_; }
  void SetCollapsed(bool collapsed);
  TDockSide Side() const { return side_; }

 signals:
  void SideRequested(velmora::TDockSide side);
  void CollapseChanged(bool collapsed);
  void CloseRequested();

 private:
  friend class TDockSite;
  void SetSide(TDockSide side);
  void UpdateTitleBar();

  QWidget* titleBar_;
  QLabel* title_;
  QToolButton* sideButton_;
  QToolButton* collapseButton_;
  QToolButton* closeButton_;
  QWidget* content_;
  TDockSide side_ = TDockSide::Left;
  bool collapsed_ = false;
};

/// The editor window's centre: the editors, and a splitter that puts the panel on the
/// side it asks for.
class TDockSite : public QWidget {
  Q_OBJECT

 public:
  TDockSite(QWidget* centre, TDockPanel* panel, QWidget* parent = nullptr);

  void SetSide(TDockSide side);
  TDockPanel* Panel() const { return panel_; }
  QSplitter* Splitter() const { return splitter_; }
  /// Shows or hides the panel; showing also expands it.
  void ShowPanel(bool shown);

 private:
  void Collapse(bool collapsed);

  QWidget* centre_;
  TDockPanel* panel_;
  QSplitter* splitter_;
  int expandedSize_ = 280;  ///< the panel's size along the splitter before it collapsed
};

}  // namespace velmora
