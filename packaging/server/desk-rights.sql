-- SPDX-License-Identifier: Apache-2.0
-- Gives a role what a desk needs in a station's schema and in that of its directory, and nothing else: it can neither change the
-- structure nor touch any other schema. To be run by the owner of the schemas, once the station is made, and once more after a newer
-- version of the program has added a table:
--   psql --dbname=radio --set=schema=harbour --set=desk=desk --file=desk-rights.sql
\set ON_ERROR_STOP on
\set directory :schema _directory
BEGIN;
GRANT USAGE ON SCHEMA :"schema", :"directory" TO :"desk";
GRANT SELECT, INSERT, UPDATE, DELETE ON ALL TABLES IN SCHEMA :"schema", :"directory" TO :"desk";
GRANT SELECT, USAGE, UPDATE ON ALL SEQUENCES IN SCHEMA :"schema", :"directory" TO :"desk";
-- The lists of tables are the owner's to change; what bears the lock of whoever writes is read and locked.
REVOKE INSERT, UPDATE, DELETE ON :"schema".tolva_tables, :"schema".tolva_fields, :"schema".tolva_indexes,
    :"schema".tolva_index_fields, :"directory".tolva_tables, :"directory".tolva_fields, :"directory".tolva_indexes,
    :"directory".tolva_index_fields FROM :"desk";
REVOKE INSERT, DELETE ON :"schema".tolva_station, :"directory".tolva_station FROM :"desk";
COMMIT;
