// Boxes for assistive programs: their roles, names and values, and that they can be pressed.
#pragma once

// Has Qt make the accessible interfaces of boxes. Once, after QApplication.
void make_boxes_accessible();
