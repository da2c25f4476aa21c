#pragma once

class PhotoFrame;
class frmMain;

// Puts the Send a Photo Page frame into the main window's first work frame and joins it to the
// window: standard dialogs, the step rings of the photo function, the clean-up on opening, the
// help pages of its tabs, and the image load speed field on its Settings tab. Call once, after
// the window is constructed and before its Load. The frame works on PhotoPage::instance().
PhotoFrame *InstallPhotoFrame(frmMain &window);
