#include <unistd.h>

#include <QApplication>
#include <QWidget>
#include <cstdio>

#include "platform/DraftKeeper.h"
#include "platform/linux/SuddenExit.h"
#include "support/FakeScheduler.h"

// Types a draft that nothing but the very end of the process writes: its clock stands still. Arguments: the
// directory of the draft, and whether (1) or not (0) last work is done.
int main(int argc, char** argv) {
  using namespace notlet;
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  FakeScheduler scheduler;
  DraftKeeper draft(arguments.at(1).toStdString(), "typist", scheduler);
  std::optional<SuddenExit> suddenExit;
  if (arguments.at(2) == u'1')
    suddenExit.emplace([&draft] { draft.flush(); });
  QWidget window;
  window.show();
  draft.keep("typed just now");
  std::printf("typed\n");
  std::fflush(stdout);
  return QApplication::exec();
}
