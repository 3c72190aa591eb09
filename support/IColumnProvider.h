// Explorer's column handlers, for Windows SDKs that leave them out: since Windows Vista only older hosts call
// them.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

// Defined together with these declarations in every SDK that has them.
#ifndef SHCDF_UPDATEITEM

#define SHCDF_UPDATEITEM 0x00000001
#define MAX_COLUMN_NAME_LEN 80
#define MAX_COLUMN_DESC_LEN 128

#pragma pack(push, 1)
struct SHCOLUMNINFO {
    SHCOLUMNID scid;
    VARTYPE vt;
    DWORD fmt;
    UINT cChars;
    DWORD csFlags;
    WCHAR wszTitle[MAX_COLUMN_NAME_LEN];
    WCHAR wszDescription[MAX_COLUMN_DESC_LEN];
};
#pragma pack(pop)
static_assert(sizeof(SHCOLUMNINFO) == 450);

struct SHCOLUMNINIT {
    ULONG dwFlags;
    ULONG dwReserved;
    WCHAR wszFolder[MAX_PATH];
};
using LPCSHCOLUMNINIT = const SHCOLUMNINIT*;

struct SHCOLUMNDATA {
    ULONG dwFlags;
    DWORD dwFileAttributes;
    ULONG dwReserved;
    WCHAR* pwszExt;
    WCHAR wszFile[MAX_PATH];
};
using LPCSHCOLUMNDATA = const SHCOLUMNDATA*;

struct IColumnProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Initialize(LPCSHCOLUMNINIT psci) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetColumnInfo(DWORD dwIndex, SHCOLUMNINFO* psci) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetItemData(LPCSHCOLUMNID pscid, LPCSHCOLUMNDATA pscd,
                                                  VARIANT* pvarData) = 0;
};

inline constexpr IID IID_IColumnProvider = {
    0xE8025004, 0x1C42, 0x11D2, {0xBE, 0x2C, 0x00, 0xA0, 0xC9, 0xA8, 0x3D, 0xA1}};

#endif
