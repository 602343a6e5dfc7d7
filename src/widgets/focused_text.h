#pragma once

// The clipboard commands of a menu: they act on whichever control of the program has the focus, and on its selected
// text. Controls that hold no text are left alone, and so is the clipboard when nothing is selected. A control that is
// neither a line nor a text edit takes part through slots named cut, copy, paste and removeSelectedText.
namespace focused_text {

void cut();
void copy();
void paste();
// Removes the selection without touching the clipboard; nothing when nothing is selected.
void delete_selection();

}  // namespace focused_text
