#pragma once

class frmMain;

// Joins Tarnwick Paint to the main window as its picture editor: the photo function's Paint
// button and the zoom window's double click open their picture in it, and Tools > Paint opens
// it alone with an empty picture. Call before the functions that edit pictures join.
void InstallPaint(frmMain &window);
