/* Data fitting: statuses and the codes of partitions, functions, splines, sites and results. */
#ifndef QOR_FITTING_CODES_H
#define QOR_FITTING_CODES_H

/* ---- Statuses ------------------------------------------------------------------------------- */

enum {
  QOR_DF_OK = 0,
  QOR_DF_NULL_TASK = -1000,
  QOR_DF_NO_MEMORY = -1001,
  QOR_DF_BAD_METHOD = -1002,
  QOR_DF_BAD_NX = -1004,
  QOR_DF_NULL_X = -1005,
  QOR_DF_BAD_X_HINT = -1006,
  QOR_DF_BAD_NY = -1007, /* or ny = 0 where a table is to be built */
  QOR_DF_NULL_Y = -1008,
  QOR_DF_BAD_Y_HINT = -1009,
  QOR_DF_BAD_ORDER = -1010,
  QOR_DF_BAD_TYPE = -1011, /* also: no such pair of order and type, or callbacks missing */
  QOR_DF_BAD_IC_TYPE = -1012,
  QOR_DF_BAD_IC = -1013, /* null internal conditions, or knots out of place */
  QOR_DF_BAD_BC_TYPE = -1014,
  QOR_DF_NULL_BC = -1015,
  QOR_DF_NULL_SCOEFF = -1016,
  QOR_DF_BAD_SCOEFF_HINT = -1017,
  QOR_DF_NOT_PERIODIC = -1018, /* first and last value differ under a periodic condition */
  QOR_DF_BAD_CODE = -1019,
  QOR_DF_BAD_INDEX = -1020,
  QOR_DF_NOT_A_BREAKPOINT = -1022,     /* a lookup site is no breakpoint */
  QOR_DF_LOOKUP_DERIVATIVES = -1024,   /* lookup with ndorder other than 1 */
  QOR_DF_LOOKUP_WITHOUT_VALUE = -1025, /* lookup with the value not asked for */
  QOR_DF_BAD_DATA_HINT = -1026,
  QOR_DF_BAD_R_HINT = -1028,          /* interpolation */
  QOR_DF_BAD_INTEGRAL_R_HINT = -1034, /* integration */
  QOR_DF_BAD_CHECK = -1036,
  QOR_DF_NULL_RESULT = -1037,
  QOR_DF_SOLVER_FAILED = -1500, /* a tridiagonal factor or solve failed */
  QOR_DF_CELLS_FINAL = 1000     /* from a search callback: its cells need no correction */
};

/* ---- Codes ---------------------------------------------------------------------------------- */

/* Partition forms, xhint. The step of a uniform partition is (x[1] - x[0]) / (nx - 1). */
enum {
  QOR_DF_NON_UNIFORM = 1,      /* nx increasing values; 0 is the same without the promise */
  QOR_DF_QUASI_UNIFORM = 2,    /* nx increasing values at nearly one distance */
  QOR_DF_UNIFORM_PARTITION = 4 /* the two ends x[0] and x[1] */
};

/* Storage and layout: yhint, scoeffhint, rhint. */
enum {
  QOR_DF_NO_HINT = 0,            /* as QOR_DF_BY_FUNCTION */
  QOR_DF_BY_FUNCTION = 16,       /* function after function */
  QOR_DF_INTERLEAVED = 32,       /* y: element after element, y[j*ny + i] */
  QOR_DF_FIRST_POINTER = 128,    /* only the first pointer; the rest through EditIdxPtr */
  QOR_DF_BY_SITE = 256,          /* results only: site after site, within it by function */
  QOR_DF_BY_SITE_AND_ORDER = 512 /* results only: site after site, within it by derivative */
};

/* Sites and limits: sitehint, llimhint, rlimhint. Other values carry no information. */
enum {
  QOR_DF_UNIFORM_SITES = 4, /* the two ends; site i is i * (site[1]-site[0])/(nsite-1) + site[0] */
  QOR_DF_SORTED = 64        /* ascending */
};

/* Boundary conditions, bc_type: a derivative of given order at the left and at the right end. */
enum {
  QOR_DF_BC_NONE = 0, /* estimated from the data, Akima only */
  QOR_DF_BC_NOT_A_KNOT = 1,
  QOR_DF_BC_FREE = 2,         /* second derivatives 0 */
  QOR_DF_BC_FIRST_FIRST = 12, /* bc: two values, left and right */
  QOR_DF_BC_SECOND_FIRST = 24,
  QOR_DF_BC_FIRST_SECOND = 36,
  QOR_DF_BC_SECOND_SECOND = 48,
  QOR_DF_BC_PERIODIC = 64,       /* bc: one value for Default and Hermite: their end derivative */
  QOR_DF_BC_FIRST_MIDPOINT = 128 /* quadratic: bc[0] is the value at the middle of cell 0 */
};

/* Value codes of EditVal and QueryVal. */
enum {
  QOR_DF_NX = 14,
  QOR_DF_X_HINT = 15,
  QOR_DF_NY = 16,
  QOR_DF_Y_HINT = 17,
  QOR_DF_ORDER = 18,
  QOR_DF_TYPE = 19,
  QOR_DF_IC_TYPE = 20,
  QOR_DF_BC_TYPE = 21,
  QOR_DF_SCOEFF_HINT = 22,
  QOR_DF_CHECK = 23
};

/* Pointer codes of EditPtr, QueryPtr and (y and scoeff) of EditIdxPtr and QueryIdxPtr. */
enum { QOR_DF_X = 1, QOR_DF_Y = 2, QOR_DF_IC = 3, QOR_DF_BC = 4, QOR_DF_SCOEFF = 5 };

/* Where interpolation has its cells from: the `type` argument. */
enum {
  QOR_DF_CELLS_OUT = 2, /* a bit: found cells go to `cell` */
  QOR_DF_CELLS_IN = 4   /* alone: `cell` holds them, no search is made */
};

#endif
