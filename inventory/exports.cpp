// The C face of this folder.
#include "inventory/census.h"
#include "inventory/dump.h"
#include "inventory/host_buffers.h"
#include "inventory/names.h"
#include "routines/inventory.h"
#include "util/text.h"

namespace {

// In the order of zv::Kind.
zv::HostBuffers buffers(const zv::HostKind& pra, const zv::HostKind& aut, const zv::HostKind& cns = {},
                        char* expiry = nullptr) {
    return {{{pra, aut, cns}}, expiry};
}

} // namespace

int NewFind_ALL_CertsKeysRenew(char** pra_list, char** aut_list, char* pra_record, long pra_record_size,
                               char* pra_subject, long, char* aut_record, long aut_record_size,
                               char* aut_subject, long, char* aut_id, char* pra_id, int* pending_pra,
                               int* pending_aut, char* ckaid_pra, char* ckaid_aut) {
    return zv::fill_card(
        buffers({pra_list, pending_pra, ckaid_pra, pra_subject, pra_id, pra_record, pra_record_size},
                {aut_list, pending_aut, ckaid_aut, aut_subject, aut_id, aut_record, aut_record_size}));
}

int NewFind_ALL_CertsKeysRenewCNS(char** cns_list, char** pra_list, char** aut_list, char* pra_record, long,
                                  char* pra_subject, long, char* aut_record, long aut_record_size,
                                  char* aut_subject, long, char* aut_id, char* pra_id, int* pending_pra,
                                  int* pending_aut, int* pending_cns, char* ckaid_pra, char* ckaid_aut,
                                  char* expiry, bool) {
    return zv::fill_services_card(buffers(
        {pra_list, pending_pra, ckaid_pra, pra_subject, pra_id, pra_record, ZV_LIST_ENTRY_SIZE},
        {aut_list, pending_aut, ckaid_aut, aut_subject, aut_id, aut_record, aut_record_size},
        {.list = cns_list, .pending = pending_cns, .record = aut_record, .record_size = aut_record_size},
        expiry));
}

int Find_ALL_Pending(int* pending_pra, int* pending_aut, char* ckaid_pra, char* ckaid_aut) {
    return zv::fill_state(
        buffers({.pending = pending_pra, .id = ckaid_pra}, {.pending = pending_aut, .id = ckaid_aut}),
        zv::SEARCH_FAILED, zv::read_card_state);
}

int Find_ALL_PendingCNS(int* pending_pra, int* pending_aut, int* pending_cns, char* ckaid_pra,
                        char* ckaid_aut, char* expiry, bool) {
    return zv::fill_state(buffers({.pending = pending_pra, .id = ckaid_pra},
                                  {.pending = pending_aut, .id = ckaid_aut}, {.pending = pending_cns},
                                  expiry),
                          zv::SEARCH_FAILED, zv::read_services_card_state);
}

int findFreeCKAID(char* key_pra, char* key_aut, bool) {
    return zv::fill_state(buffers({.id = key_pra}, {.id = key_aut}), -1, zv::find_free_ids);
}

void getDtScadenza(char* pdata, char* out) {
    const std::string_view date = zv::expiry_in(zv::or_empty(pdata));
    if (!date.empty()) zv::copy_text(out, date.size() + 1, date);
}

bool presente(const ckaid* table, const char* id) {
    return table != nullptr && zv::has_record({table, ZV_CKAIDS}, zv::or_empty(id));
}

int __DescrToOid(char* name, char*) {
    if (name != nullptr) zv::rewrite_name(name, zv::NAME_SIZE);
    return 0;
}

int __DescrToOidCNS(char* name, char*) {
    return name != nullptr && zv::rewrite_name_cns(name, zv::NAME_SIZE) ? 0 : 1;
}

int renewDump(char* lib_path, char* pin, int slot, std::string& out) {
    return zv::dump_card(lib_path, pin, slot, out);
}

int FindAllObjects(unsigned long, char* text) {
    return static_cast<int>(zv::take_census(std::span<char, zv::CENSUS_SIZE>(text, zv::CENSUS_SIZE)));
}

int isCodFisc(char* text) {
    return zv::looks_like_tax_code(zv::or_empty(text)) ? 1 : 0;
}
