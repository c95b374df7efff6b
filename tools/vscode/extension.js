// Starts `fmhost lsp` and lets VS Code speak with it.
"use strict";

const path = require("path");
const vscode = require("vscode");
const { LanguageClient } = require("vscode-languageclient/node");

let client;

// The command line of the server, as the settings say.
function serverOptions() {
    const settings = vscode.workspace.getConfiguration("fmhost");
    const plugin = settings.get("plugin");
    const args = ["lsp"];
    if (settings.get("noPlugin")) {
        args.push("--no-plugin");
    } else if (plugin) {
        args.push("--plugin", resolved(plugin));
    }
    return { command: resolved(settings.get("path")), args };
}

// A path with folders that is not absolute starts at the workspace's folder.
function resolved(file) {
    const folder = vscode.workspace.workspaceFolders?.[0]?.uri.fsPath;
    return folder && file.includes("/") && !path.isAbsolute(file) ? path.join(folder, file) : file;
}

async function start() {
    const server = serverOptions();
    client = new LanguageClient("fmhost", "fmhost", server, {
        documentSelector: [
            { scheme: "file", language: "filemaker-calculations" },
            { scheme: "file", language: "filemaker-functions" },
            { scheme: "file", language: "filemaker-script" },
        ],
    });
    try {
        await client.start();
    } catch (error) {
        client = undefined;
        vscode.window.showErrorMessage(
            `${server.command} lsp does not start (${error.message}); the setting fmhost.path names the program.`);
    }
}

async function stop() {
    const running = client;
    client = undefined;
    await running?.stop();
}

async function restart() {
    await stop();
    await start();
}

async function activate(context) {
    context.subscriptions.push(
        vscode.commands.registerCommand("fmhost.restart", restart),
        vscode.workspace.onDidChangeConfiguration((change) => {
            if (["path", "plugin", "noPlugin"].some((name) => change.affectsConfiguration(`fmhost.${name}`))) {
                restart();
            }
        }));
    await start();
}

module.exports = { activate, deactivate: stop };
