// Vector registers of the build level: the compiler's vector types, plus what the language lacks.
//
// The files of kernels/lanes/ alone look at the instruction level. A level is a whole build (the
// library is compiled once per level), so everything here may be inlined freely.
#pragma once

#include "kernels/lanes/arithmetic.h"
#include "kernels/lanes/bits.h"
#include "kernels/lanes/complex.h"
#include "kernels/lanes/convert.h"
#include "kernels/lanes/exponents.h"
#include "kernels/lanes/masks.h"
#include "kernels/lanes/memory.h"
#include "kernels/lanes/polynomial.h"
#include "kernels/lanes/tables.h"
#include "kernels/lanes/types.h"
#include "kernels/lanes/whole.h"
