# shellcheck shell=bash
# The portal's web site: the installed program and web folder, its settings, and Apache httpd. Uses
# run, as_service, zone, listen, port, the database's names and the directory's.

# install_site: copies what is served into the run folder, which the web server can read wherever the
# checkout lies. Modification times stay, so that browsers' copies of style sheets stay good.
install_site() {
    local module
    say "Installing the web site"
    rm -rf "$run/site.new"
    mkdir -p "$run/site.new/web"
    install -m 0755 "$checkout/build/lumora.cgi" "$run/site.new/lumora.cgi"
    for module in lumora-pdf.so lumora-xlsx.so; do
        install -m 0755 "$checkout/build/release/$module" "$run/site.new/$module"
    done
    tar -C "$checkout/web" --exclude=node_modules --exclude='package*.json' \
        --exclude=.npmrc --exclude=.installed -cf - . |
        tar -C "$run/site.new/web" -xf -
    cp -Rp "$checkout/config/apache/pages" "$run/site.new/pages"
    cp "$checkout/config/apache/lumora.conf" "$run/site.new/lumora.conf"
    # The bench compares the portal with a program that does nothing, behind the same server.
    if [[ -n ${LUMORA_BENCH_CGI:-} ]]; then
        install -m 0755 "$LUMORA_BENCH_CGI" "$run/site.new/hello"
        echo "ScriptAlias \"/lumora/hello\" \"$run/site/hello\"" >"$run/site.new/bench.conf"
    fi
    own "$run/site.new"
    rm -rf "$run/site"
    mv "$run/site.new" "$run/site"
}

# write_settings: the portal's settings file and the web server's password file. Both are for the
# program alone; it replaces the password file when a user changes a password.
write_settings() {
    local config=$run/root/Norvane/config
    mkdir -p "$config"
    password_file=$config/passwords
    write_file 0640 "$config/Lumora.cfg" <<END
serverAddress=$(url_escape "$run/db.sock")
user=$db_user
password=$db_password
db=$db_name
passwordFile=$(url_escape "$password_file")
ldapserver=$directory_address
ldapuser=$(url_escape "$directory_user")
ldappassword=$directory_password
END
    db -N -r "$db_name" -e "SELECT CONCAT(username, ':', passwordHash) FROM CustomerContact
        WHERE username <> '' AND passwordHash <> '' ORDER BY username" |
        write_file 0640 "$password_file"
    install_report_pages "$config/reports"
    own "$run/root"
}

# listen_lines: this machine always reaches the portal at 127.0.0.1, where its address says it is.
listen_lines() {
    case $listen in
        127.0.0.1) echo "Listen 127.0.0.1:$port" ;;
        0.0.0.0 | :: | \*) echo "Listen $port" ;;
        *:*) printf 'Listen %s\n' "127.0.0.1:$port" "[$listen]:$port" ;;
        *) printf 'Listen %s\n' "127.0.0.1:$port" "$listen:$port" ;;
    esac
}

start_site() {
    say "Starting the web server"
    { cat && listen_lines; } <<END | write_file 0644 "$run/site/httpd.conf"
Define LUMORA_PORT "$port"
Define LUMORA_SITE "$run/site"
Define LUMORA_ROOT "$run/root"
Define LUMORA_ZONE "$zone"
Define LUMORA_PASSWORDS "$password_file"
Define LUMORA_LOG "$run/log/error.log"
Define LUMORA_STATE "$run"
Include "$run/site/lumora.conf"
END
    rm -f "$run/httpd.pid" "$run"/cgid.sock*
    "${as_service[@]}" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 \
        apache2 -D FOREGROUND -f "$run/site/httpd.conf" >"$run/log/httpd.log" 2>&1 9>&- &
    site_pid=$!
    until port_answers "$port"; do
        kill -0 "$site_pid" 2>/dev/null || {
            show_log "$run/log/httpd.log"
            die "the web server did not start"
        }
        sleep 0.1
    done
}
