/* The version script of libqor_ark_base, preprocessed at build time: the names of the row list and
   the plain entries of every family. */
#include "qor/vector_math_rows.h"

#define QOR_NAMES(f) qor_ark_kernel_##f##_ttab; qor_ark_kernel_##f##_ctab; _ark##f; _ark##f##_*;
#define QOR_FUNCTION(t, name, ...) QOR_NAMES(t##name)
#define QOR_STRIDED(t, name, ...) QOR_NAMES(t##name##I)
#define QOR_PACK(t, name, ...) QOR_NAMES(t##name)

{
  global:
    QOR_FUNCTION_ROWS(QOR_FUNCTION)
    QOR_PACK_ROWS(QOR_PACK)
    QOR_FUNCTION_ROWS(QOR_STRIDED)
    _arkGetMode; _arkSetMode; qor_ark_kernel_GetMode; qor_ark_kernel_SetMode;
    _arkGetErrStatus; _arkSetErrStatus; _arkClearErrStatus;
    qor_ark_kernel_GetErrStatus; qor_ark_kernel_SetErrStatus; qor_ark_kernel_ClearErrStatus;
    _arkGetErrorCallBack; _arkSetErrorCallBack; _arkClearErrorCallBack;
    qor_ark_kernel_GetErrorCallBack; qor_ark_kernel_SetErrorCallBack;
    qor_ark_kernel_ClearErrorCallBack;
    _arkSetInterfInputVectorPointer; qor_ark_kernel_SetInterfInputVectorPointer;
    qor_ark_kernel_GetTTableIndex; qor_ark_kernel_GetTTableIndexM;
    dll_cpu_version;
    __ost*; _ost*; __RegBrngs*; qor_df_kernel_*;
  local:
    *;
};
