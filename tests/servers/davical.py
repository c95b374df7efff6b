"""DAViCal on PostgreSQL behind Apache, as Debian packages them: of its own, on this machine's loopback only.

    with Davical(FOLDER) as server:
        server.add_user("ida", "s3cret")
        ... server.url ...

Everything that it keeps is in FOLDER, which is made anew; the system's own clusters, services and settings are not
touched. Neither PostgreSQL nor this configuration of Apache runs as root: root starts them as the user postgres.
"""

import os
import pathlib
import pwd
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import urllib.error
import urllib.request

DAVICAL = pathlib.Path("/usr/share/davical")
MODULES = "/usr/lib/apache2/modules"
SECONDS_TO_START = 60

APACHE = """
ServerName 127.0.0.1
ServerRoot "{folder}"
PidFile "{folder}/apache.pid"
ErrorLog "{folder}/apache.log"
LogLevel warn
Listen 127.0.0.1:{port}
Listen 127.0.0.1:{digest_port}
LoadModule mpm_prefork_module {modules}/mod_mpm_prefork.so
LoadModule authz_core_module {modules}/mod_authz_core.so
LoadModule mime_module {modules}/mod_mime.so
LoadModule filter_module {modules}/mod_filter.so
LoadModule deflate_module {modules}/mod_deflate.so
LoadModule rewrite_module {modules}/mod_rewrite.so
LoadModule php_module {php}
StartServers 4
MaxRequestWorkers 16
MaxConnectionsPerChild 0
KeepAliveTimeout 60
MaxKeepAliveRequests 0
TypesConfig /etc/mime.types
DocumentRoot "{folder}/htdocs"
<Directory "{folder}/htdocs">
  Require all granted
  SetOutputFilter DEFLATE
</Directory>
<FilesMatch "\\.php$">
  SetHandler application/x-httpd-php
</FilesMatch>
# No settings of another DAViCal: those of {folder}/config are the only ones that it can read.
php_admin_value open_basedir "{folder}:/usr/share:/tmp"
RewriteEngine On
RewriteRule ^/\\.well-known/(.*)$ /caldav.php/.well-known/$1 [NC,PT]
"""

SETTINGS = """<?php
$c->pg_connect[] = "host={socket} dbname=davical user=davical_app";
$c->system_name = "Velocard's tests";
$c->admin_email = "nobody@example.com";
$c->carddav_max_resource_size = 1000000;
$c->default_collections = array();
if ( $_SERVER['SERVER_PORT'] == {digest_port} ) $c->http_auth_mode = "Digest";
"""

USER = """
INSERT INTO usr (active, email_ok, username, password, fullname, email)
    VALUES (TRUE, current_date, '{name}', '**{password}', '{name}', '{name}@example.com');
INSERT INTO principal (type_id, user_no, displayname)
    SELECT 1, user_no, fullname FROM usr WHERE username = '{name}';
"""


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def installed(pattern):
    """The newest file of this pattern, which starts at the root."""
    found = sorted(pathlib.Path("/").glob(pattern))
    if not found:
        raise SystemExit(f"/{pattern} is missing: scripts/install-packages packages-servers.txt installs it")
    return found[-1]


class Davical:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        self.port, self.digest_port = free_port(), free_port()
        self.postgres = installed("usr/lib/postgresql/*/bin/postgres").parent
        # PostgreSQL refuses to run as root.
        self.user = pwd.getpwnam("postgres") if os.geteuid() == 0 else None
        self.processes = []

    @property
    def url(self):
        return f"http://127.0.0.1:{self.port}/"

    @property
    def digest_url(self):
        """Where it asks for Digest instead of Basic."""
        return f"http://127.0.0.1:{self.digest_port}/"

    def versions(self):
        """The packages that answer, as 'name version'."""
        names = ("davical", "postgresql-15", "apache2-bin", "libapache2-mod-php8.2")
        listed = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *names],
                                capture_output=True, text=True, check=False)
        return listed.stdout.splitlines()

    def __enter__(self):
        # So that the server ends whatever ends this.
        for number in (signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, lambda number, _: sys.exit(128 + number))
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        # A socket's path may have 107 bytes only, which a build folder may exceed.
        self.socket = pathlib.Path(tempfile.mkdtemp(prefix="davical-"))
        try:
            if self.user:
                for path in (self.folder, self.socket):
                    os.chown(path, self.user.pw_uid, self.user.pw_gid)
                if self.run("ls", self.folder, check=False).returncode != 0:
                    raise SystemExit(f"the user postgres cannot reach {self.folder}; run this as another user than "
                                     "root, or in a folder that everybody can enter")
            self.start_database()
            self.start_web()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process, end in reversed(self.processes):
            process.send_signal(end)
        for process, _ in self.processes:
            try:
                process.wait(timeout=30)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        self.processes = []
        shutil.rmtree(self.socket, ignore_errors=True)

    def as_user(self):
        """The arguments for subprocess that make a program run as the user whose all this is."""
        environment = {"PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8", "HOME": str(self.folder), "TMPDIR": "/tmp",
                       "PGHOST": str(self.socket), "PGPORT": "5432"}
        options = {"env": environment, "cwd": self.folder, "stdin": subprocess.DEVNULL}
        if self.user:
            environment["USER"] = environment["PGUSER"] = self.user.pw_name
            options |= {"user": self.user.pw_uid, "group": self.user.pw_gid, "extra_groups": []}
        return options

    def run(self, *command, check=True, **options):
        done = subprocess.run([str(part) for part in command], capture_output=True, text=True, check=False,
                              **self.as_user(), **options)
        if check and done.returncode != 0:
            raise SystemExit(f"{command[0]} fails: {done.stdout}{done.stderr}")
        return done

    def start(self, log, end, *command):
        """Starts a program that stays; the signal [end] ends it in good order."""
        with open(self.folder / log, "ab") as output:
            if self.user:
                os.fchown(output.fileno(), self.user.pw_uid, self.user.pw_gid)
            process = subprocess.Popen([str(part) for part in command], stdout=output, stderr=output,
                                       start_new_session=True, **self.as_user())
        self.processes.append((process, end))
        return process

    def wait_for(self, what, process, log, ready):
        deadline = time.monotonic() + SECONDS_TO_START
        while not ready():
            if process.poll() is not None or time.monotonic() > deadline:
                raise SystemExit(f"{what} does not start:\n{(self.folder / log).read_text()}")
            time.sleep(0.05)

    def start_database(self):
        data = self.folder / "database"
        self.run(self.postgres / "initdb", "--pgdata", data, "--auth=trust", "--encoding=UTF8", "--no-sync")
        # What is thrown away need not outlive a failure of power.
        process = self.start("postgres.log", signal.SIGINT, self.postgres / "postgres", "-D", data,
                             "-c", "listen_addresses=", "-c", f"unix_socket_directories={self.socket}",
                             "-c", "unix_socket_permissions=0700", "-c", "fsync=off", "-c", "full_page_writes=off",
                             "-c", "synchronous_commit=off")
        self.wait_for("PostgreSQL", process, "postgres.log",
                      lambda: self.run(self.postgres / "pg_isready", check=False).returncode == 0)
        self.run("sh", DAVICAL / "dba/create-database.sh", "davical", "admin")

    def start_web(self):
        # A copy, as DAViCal looks for its settings beside the folder in which it is.
        shutil.copytree(DAVICAL / "htdocs", self.folder / "htdocs")
        for name in ("inc", "locale"):
            (self.folder / name).symlink_to(DAVICAL / name)
        (self.folder / "config").mkdir()
        places = {"folder": self.folder, "modules": MODULES, "php": installed("usr/lib/apache2/modules/libphp*.so"),
                  "port": self.port, "digest_port": self.digest_port}
        (self.folder / "config/config.php").write_text(
            SETTINGS.replace("{socket}", str(self.socket)).replace("{digest_port}", str(self.digest_port)))
        (self.folder / "apache.conf").write_text(APACHE.format(**places))
        process = self.start("apache.log", signal.SIGTERM, "/usr/sbin/apache2", "-f", self.folder / "apache.conf",
                             "-D", "FOREGROUND")
        self.wait_for("Apache", process, "apache.log", self.answers)

    def answers(self):
        try:
            urllib.request.urlopen(self.url + "caldav.php/", timeout=10)
        except urllib.error.HTTPError as error:
            return error.code == 401
        except OSError:
            return False
        return True

    def sql(self, text):
        self.run(self.postgres / "psql", "-qX", "-v", "ON_ERROR_STOP=1", "-c", text, "davical")

    def add_user(self, name, password):
        self.sql(USER.format(name=name, password=password))
