/*
 * A dynamic-loader audit module (rtld-audit(7)) for scripts/check-packages:
 * with LD_AUDIT naming it and KELO_LOAD_RECORD naming a file, every process
 * appends the program it runs and each shared object it loads, Qt plugins
 * included, to that file, one path a line.
 *
 * The file is opened and closed around each line, so a process's descriptor
 * table is the same as without the module (tests check that descriptors do
 * not leak into started programs); it asks for no symbol bindings, so it
 * costs nothing after loading.
 */
#define _GNU_SOURCE
#include <fcntl.h>
#include <limits.h>
#include <link.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static void record(const char *path)
{
    const char *file = getenv("KELO_LOAD_RECORD");
    if (!file || !*file || !path || !*path)
        return;
    const int fd = open(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0)
        return;
    char line[PATH_MAX + 2];
    const size_t length = strnlen(path, PATH_MAX);
    memcpy(line, path, length);
    line[length] = '\n';
    /* One write of one line: appends of concurrent processes do not interleave. */
    if (write(fd, line, length + 1) < 0) {
    }
    close(fd);
}

unsigned int la_version(unsigned int version)
{
    return version < LAV_CURRENT ? version : LAV_CURRENT;
}

unsigned int la_objopen(struct link_map *map, Lmid_t lmid, uintptr_t *cookie)
{
    (void)lmid;
    (void)cookie;
    if (map->l_name && *map->l_name) {
        record(map->l_name);
    } else {
        /* The main program has no name in the link map. */
        char program[PATH_MAX];
        const ssize_t length = readlink("/proc/self/exe", program, sizeof program - 1);
        if (length > 0) {
            program[length] = '\0';
            record(program);
        }
    }
    return 0;
}
