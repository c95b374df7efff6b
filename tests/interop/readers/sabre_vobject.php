<?php
// Prints as JSON what php-sabre-vobject sees in the cards of a file. The form is described in ../README.md.

require 'Sabre/VObject/autoload.php';

use Sabre\VObject\Component\VCard;
use Sabre\VObject\Property;
use Sabre\VObject\Reader;

function types(Property $line): array
{
    $words = [];
    foreach ($line->parameters as $param) {
        if (strtoupper($param->name) === 'TYPE') {
            $words = array_merge($words, explode(',', strtoupper($param->value)));
        }
    }
    sort($words);
    return $words;
}

// A text: the library leaves commas and semicolons escaped, and that to who uses it.
function text(Property $line): string
{
    return strtr((string) $line->value, ['\\,' => ',', '\\;' => ';']);
}

function seen(VCard $card): array
{
    $all = fn (string $name) => array_values($card->select($name));
    $first = fn (string $name) => $all($name) ? text($all($name)[0]) : '';
    $parts = fn (string $name) => $all($name) ? $all($name)[0]->getParts() : [];
    $labelled = fn (string $name) => array_map(
        fn ($line) => ['value' => text($line), 'types' => types($line)], $all($name));
    $values = fn (string $name) => array_map(fn ($line) => text($line), $all($name));
    $categories = [];
    foreach ($all('CATEGORIES') as $line) {
        $categories = array_merge($categories, $line->getParts());
    }
    $photo = $first('PHOTO');
    $isAddress = preg_match('/^[a-z]+:/', $photo) && !str_starts_with($photo, 'data:');
    $photo = $isAddress ? '' : base64_decode(preg_replace('/^data:[^,]*;base64,/', '', $photo));
    return [
        'uid' => $first('UID'),
        'fullname' => $first('FN'),
        'name' => $parts('N'),
        'nickname' => $first('NICKNAME'),
        'org' => $parts('ORG'),
        'title' => $first('TITLE'),
        'note' => $first('NOTE'),
        'birthday' => $first('BDAY'),
        'anniversary' => $first('ANNIVERSARY') ?: $first('X-ANNIVERSARY'),
        'phones' => $labelled('TEL'),
        'emails' => $labelled('EMAIL'),
        'addresses' => array_map(
            fn ($line) => ['value' => $line->getParts(), 'types' => types($line)], $all('ADR')),
        'urls' => $values('URL'),
        'messaging' => $values('IMPP'),
        'categories' => $categories,
        'members' => array_merge($values('MEMBER'), $values('X-ADDRESSBOOKSERVER-MEMBER')),
        'photo' => $photo === '' ? '' : hash('sha256', $photo),
    ];
}

$cards = [];
$end = "\r\nEND:VCARD\r\n";
foreach (array_slice(explode($end, file_get_contents($argv[1])), 0, -1) as $text) {
    try {
        $cards[] = seen(Reader::read($text . $end));
    } catch (Throwable $error) { // whatever the library throws is what it says of the card
        $cards[] = ['error' => get_class($error) . ': ' . $error->getMessage()];
    }
}
echo json_encode($cards, JSON_UNESCAPED_UNICODE | JSON_PRETTY_PRINT | JSON_INVALID_UTF8_SUBSTITUTE), "\n";
