// Three entries of seventy: enough to load, not enough to be a provider.
extern "C" {
__attribute__((visibility("default"))) int tamlin_fi_pgn_init(void *, unsigned short *)
{
    return 0;
}
__attribute__((visibility("default"))) void tamlin_fi_pgn_fini() {}
__attribute__((visibility("default"))) int tamlin_fi_pgn_claim(void *, void *, int *)
{
    return 0;
}
}
