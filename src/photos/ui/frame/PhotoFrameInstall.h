#pragma once

class PhotoFrame;
class frmMain;

// Joins the Send a Photo Page frame to the main window as its first function: the frame in
// TabFrame(0), its instruction page, step rings and help pages, the clean-up on opening, and the
// image load speed field on its Settings tab, and the Tools menu's "Paint" that opens the paint
// window alone with an empty picture. Call once, after the window is constructed and
// before its Load. The frame works on the window's state: its current PhotoPage record.
PhotoFrame *InstallPhotoFrame(frmMain &window);
