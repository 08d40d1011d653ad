int mean(void);

int mean(void) {
    return 1;
}
