#pragma once

class QBoxLayout;
class QDialog;
class QPushButton;

namespace tarabix {

// The OK / Cancel row every option dialog ends with: right-aligned, OK the default button,
// Cancel rejecting the dialog. The dialog connects OK to its own handler.
void addOkCancelRow(QDialog* dialog, QBoxLayout* layout, QPushButton*& ok, QPushButton*& cancel);

}  // namespace tarabix
