// SPDX-License-Identifier: MIT
#include "emulator/seed.h"

namespace stowra_emulator {

const char kSchemaSql[] = R"sql(
CREATE TABLE users (
  uid         TEXT PRIMARY KEY,
  displayname TEXT,
  email       TEXT NOT NULL,
  vkr_id      TEXT NOT NULL,
  locale      TEXT,
  signed_in   INTEGER NOT NULL DEFAULT 0 CHECK (signed_in IN (0, 1))
);
CREATE UNIQUE INDEX one_user_signed_in ON users (signed_in) WHERE signed_in = 1;

CREATE TABLE application_versions (
  id              INTEGER PRIMARY KEY,  -- The highest is offered.
  current_version TEXT NOT NULL,
  expire_version  TEXT NOT NULL
);

CREATE TABLE messages (
  id        INTEGER PRIMARY KEY,        -- The highest is shown.
  max_shows INTEGER NOT NULL,
  width     INTEGER NOT NULL,
  height    INTEGER NOT NULL,
  title     TEXT NOT NULL,
  url       TEXT NOT NULL
);

CREATE TABLE data_files (
  position INTEGER PRIMARY KEY,
  filename TEXT NOT NULL,
  version  INTEGER NOT NULL,
  url      TEXT NOT NULL
);

CREATE TABLE extensions (
  id           TEXT PRIMARY KEY,
  version_uuid TEXT NOT NULL,
  version      TEXT NOT NULL,           -- A decimal number.
  file_url     TEXT NOT NULL,
  remote_kill  INTEGER NOT NULL DEFAULT 0 CHECK (remote_kill IN (0, 1)),
  enabled      INTEGER NOT NULL DEFAULT 1 CHECK (enabled IN (0, 1))
);

CREATE TABLE items (
  id                   INTEGER PRIMARY KEY,  -- Results come in this order.
  mid                  TEXT NOT NULL UNIQUE,
  kind                 TEXT NOT NULL CHECK (kind IN ('model', 'collection')),
  title                TEXT NOT NULL,
  summary              TEXT NOT NULL,
  keywords             TEXT NOT NULL,        -- Searched, not shown.
  author               TEXT NOT NULL,        -- The uid of a user.
  updated              TEXT NOT NULL,        -- Such as 2024-01-31T09:00:00Z.
  shape                TEXT NOT NULL,        -- Shown in its picture; if '', the mid decides.
  dynamic_component    INTEGER NOT NULL DEFAULT 0 CHECK (dynamic_component IN (0, 1)),
  classified_component INTEGER NOT NULL DEFAULT 0 CHECK (classified_component IN (0, 1))
);

CREATE TABLE collection_models (
  collection TEXT NOT NULL,
  model      TEXT NOT NULL,
  PRIMARY KEY (collection, model)
);

CREATE TABLE renditions (
  mid  TEXT NOT NULL,
  rtyp TEXT NOT NULL,
  type TEXT NOT NULL,
  UNIQUE (mid, rtyp)
);

CREATE TABLE uploads (
  mid           TEXT PRIMARY KEY,
  subject_id    TEXT NOT NULL,
  subject_class TEXT NOT NULL,
  file_name     TEXT NOT NULL,
  content_type  TEXT NOT NULL,
  task          TEXT NOT NULL,
  priority      TEXT NOT NULL,
  is_zipped     INTEGER NOT NULL CHECK (is_zipped IN (0, 1)),
  size          INTEGER NOT NULL,       -- In bytes. The file itself is not in the database.
  etag          TEXT NOT NULL
);

-- The words of the items. Symbols count as words, so a search can find an emoji.
CREATE VIRTUAL TABLE item_words USING fts5(
  title, summary, keywords, content = 'items', content_rowid = 'id',
  tokenize = "unicode61 remove_diacritics 2 categories 'L* N* Co So'"
);
CREATE TRIGGER item_is_new AFTER INSERT ON items BEGIN
  INSERT INTO item_words (rowid, title, summary, keywords)
    VALUES (new.id, new.title, new.summary, new.keywords);
END;
CREATE TRIGGER item_is_gone AFTER DELETE ON items BEGIN
  INSERT INTO item_words (item_words, rowid, title, summary, keywords)
    VALUES ('delete', old.id, old.title, old.summary, old.keywords);
END;
CREATE TRIGGER item_has_changed AFTER UPDATE ON items BEGIN
  INSERT INTO item_words (item_words, rowid, title, summary, keywords)
    VALUES ('delete', old.id, old.title, old.summary, old.keywords);
  INSERT INTO item_words (rowid, title, summary, keywords)
    VALUES (new.id, new.title, new.summary, new.keywords);
END;
)sql";

const char kSeedSql[] = R"sql(
INSERT INTO users (uid, displayname, email, vkr_id, locale, signed_in) VALUES
  ('u-1001', 'Zoë Ångström',    'zoe@example.com',    'vkr-7f3a01', 'sv-SE', 1),
  ('u-1002', '山田 花子',       'hanako@example.jp',  'vkr-7f3a02', 'ja-JP', 0),
  ('u-1003', 'Ирина Соколова',  'irina@example.org',  'vkr-7f3a03', 'ru-RU', 0),
  ('u-1004', 'Kit 🏛 O''Neill',  'kit@example.com',    'vkr-7f3a04', NULL,    0),
  ('u-1005', NULL,              'nameless@example.com', '',         NULL,    0);

INSERT INTO application_versions (id, current_version, expire_version) VALUES
  (1, '23.1.340', '21.0.0'),
  (2, '24.0.484', '22.0.0');

INSERT INTO messages (id, max_shows, width, height, title, url) VALUES
  (41, 1, 430, 540, 'Maintenance on Sunday', 'https://www.stowra.example/messages/41'),
  (42, 3, 640, 480, 'What’s new: façades, naïve roofs and 屋根',
   'https://www.stowra.example/messages/42?from=app&lang=en');

INSERT INTO data_files (position, filename, version, url) VALUES
  (1, 'materials.dat',     17, 'https://www.stowra.example/data/materials-17.dat'),
  (2, 'régions.dat',        4, 'https://www.stowra.example/data/r%C3%A9gions-4.dat'),
  (3, 'content-types.dat',  1, 'https://www.stowra.example/data/content-types-1.dat');

INSERT INTO extensions (id, version_uuid, version, file_url, remote_kill, enabled) VALUES
  ('roof-tools',    '4f1d2c9e-8a53-4c1b-9d0e-2f6a7b8c9d01', '2.5',
   'https://extensions.stowra.example/roof-tools-2.5.zip', 0, 1),
  ('stair-maker',   '0b7e6a3d-51c2-4e8f-a9b4-6c3d2e1f0a02', '1.0',
   'https://extensions.stowra.example/stair-maker-1.0.zip', 0, 1),
  ('sun-study',     '93a8f5b1-7d24-4b6e-8c1f-5e4d3c2b1a03', '10.25',
   'https://extensions.stowra.example/sun-study-10.25.zip', 0, 0),
  ('old-exporter',  'c26d9e47-3f8a-4a75-b0d2-1a2b3c4d5e04', '0.9',
   'https://extensions.stowra.example/old-exporter-0.9.zip', 1, 0),
  ('gärten-窓',     '7e5c1b8f-9a06-4d3c-a7e8-0f1e2d3c4b05', '3.75',
   'https://extensions.stowra.example/g%C3%A4rten-3.75.zip', 0, 1);
)sql";

}  // namespace stowra_emulator
