// Names for objects by their role.
#pragma once

#include "ext_mess.h"

typedef t_object t_box;
typedef t_object t_patcher;
