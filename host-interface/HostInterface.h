/* The whole of the host's binary interface. */
#pragma once

#include "AEGP_Suites.h"
#include "PF_Callbacks.h"
#include "PF_Entry.h"
#include "PF_Params.h"
#include "PF_Suites.h"
#include "PF_Types.h"
#include "PF_Values.h"
#include "PF_World.h"
#include "PiPL.h"
#include "SP_Basic.h"
