#ifndef ZV_INVENTORY_OID_NAMES_H
#define ZV_INVENTORY_OID_NAMES_H

namespace zv {

/** An attribute's short name, slash included, and the X.520 OID that takes its place. */
struct OidName {
    const char* key;
    const char* replacement;
};

/** Applied in this order, whatever the case of the letters. */
inline constexpr OidName __DescrOid[] = {
    {"/CN=", "2.5.4.3="},
    {"/dnQualifier=", "2.5.4.46="},
    {"/emailAddress=", "1.2.840.113549.1.9.1="},
    {"/pseudonym=", "2.5.4.65="},
    {"/title=", "2.5.4.12="},
    {"/description=", "2.5.4.13="},
    {"/serialNumber=", "2.5.4.5="},
    {"/OU=", "2.5.4.11="},
    {"/O=", "2.5.4.10="},
    {"/SN=", "2.5.4.4="},
    {"/GN=", "2.5.4.42="},
    {"/C=", "2.5.4.6="},
    {"/L=", "2.5.4.7="},
    {"/ST=", "2.5.4.8="},
};

} // namespace zv

#endif
