#include "program/start_failure.h"

#include <QMessageBox>
#include <QTimer>
#include <chrono>
#include <cstdio>

namespace orbinex {

void tellStartFailure(const std::string& reason, bool isBoxShown) {
    std::fprintf(stderr, "orbinex: %s\n", reason.c_str());
    if (!isBoxShown) return;
    QMessageBox box(QMessageBox::Critical, "Orbinex Cannot Start", QString::fromStdString(reason));
    // Nobody may be there.
    QTimer limit;
    QObject::connect(&limit, &QTimer::timeout, &box, &QDialog::reject);
    limit.start(std::chrono::minutes(1));
    box.exec();
}

}  // namespace orbinex
