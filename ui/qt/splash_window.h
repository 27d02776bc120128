// The start-up window: the program's name and version.
#pragma once

#include <QSplashScreen>

namespace quorvel {

class frmSplash : public QSplashScreen {
  Q_OBJECT

 public:
  frmSplash();
};

}  // namespace quorvel
