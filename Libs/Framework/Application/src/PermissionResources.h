// Numbers of the permission dialog and its texts in the program's resources. Macros, because the resource
// compiler reads this file too.
#pragma once

#define PERMISSION_DIALOG 101
#define PERMISSION_MESSAGE 102 // the control; the buttons are IDYES and IDCANCEL

#define PERMISSION_TEXT_YES 103
#define PERMISSION_TEXT_NO 104
#define PERMISSION_TEXT_TITLE 105
#define PERMISSION_TEXT_MESSAGE 106
#define PERMISSION_TEXT_YES_TO_ALL 107

#define PERMISSION_ICON 1 // the program's own
