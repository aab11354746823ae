# All tests that use a database, once more with PostgreSQL: the same program, with a throwaway server for all of them that
# ctest starts before and removes after them.
file(GLOB postgres_programs /usr/lib/postgresql/*/bin)
# Looked for each time: it may have been installed or removed since the last configuration.
unset(CLOCKWELL_POSTGRES CACHE)
find_program(CLOCKWELL_POSTGRES initdb PATHS ${postgres_programs})
if(NOT CLOCKWELL_POSTGRES)
    message(STATUS "The server's tests run with SQLite only: no PostgreSQL is installed here")
    return()
endif()

# A socket's path may have 107 characters, so it is not in the build's folder.
string(SHA1 postgres_id "${CMAKE_BINARY_DIR}")
string(SUBSTRING "${postgres_id}" 0 12 postgres_id)
set(postgres_folder "/tmp/clockwell-postgres-${postgres_id}")
add_test(NAME PostgreSQL.Start COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/postgres-server" fresh "${postgres_folder}")
add_test(NAME PostgreSQL.Remove COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/postgres-server" remove "${postgres_folder}")
set_tests_properties(PostgreSQL.Start PROPERTIES FIXTURES_SETUP PostgreSQL TIMEOUT 300)
set_tests_properties(PostgreSQL.Remove PROPERTIES FIXTURES_CLEANUP PostgreSQL TIMEOUT 300)

# Not these: they touch no database ...
set(without_database
    AccessLogTest.* CalendarDayTest.* CsvTest.* DeviceMonthTest.* FairQueueTest.* FieldTextsTest.* Http*
    *BusyAddressTest.* *BusyConnectionsTest.* HeldMailQueueTest.* InstantTest.* *BadTargetTest.* Kinds/* ListenAddressTest.*
    LogWriterTest.* MailMessageTest.* MailQueueTest.* MailTextsTest.* MailboxTest.*
    *MalformedRequestTest.* NumberTextTest.* OutboxDeliveryTest.* PasswordTextTest.* PasswordsTest.* PolicyTest.*
    RefusalTest.* RenewalPatienceTest.* RepeatedLinesTest.* RequestAccountTest.* RequestParserTest.*
    *RequestParserStepTest.* RequestTargetTest.* ResponseTextTest.* ServiceLogTest.* *SmuggledRequestTest.* SmtpTest.*
    SmtpUrlTest.* SpreadsheetTextTest.* *StopSignal* StrangerOptionsUsageTest.* TableTest.* TimeZoneTest.*
    TokenBucketsTest.* TokensTest.* TurnsTest.* WaitTextTest.* WorkDayTest.*)
# ... and these are about the file of SQLite: its backup and restoration, rights, limit, damage, upgrade, locks and one writer.
set(about_sqlite
    BackupTest.* RestoreTest.* RestoreRaceTest.* MigrationTest.* FullDiskTest.* StartFailureTest.* IndexedStatementsTest.*
    SessionCleanupUpgradeTest.* DatabaseTest.FileNamesMayHaveBlanksAndIsPrivate DatabaseTest.UsesTheDurableSettings
    DatabaseTest.LimitOfTheFileIsKeptAndLeavesItUsable DatabaseTest.FileThatIsNoDatabaseIsRefused
    DatabaseTest.MissingFolderIsSaidPlainly AdminDatabaseTest.DatabaseIsNeverMade
    AccountProcessTest.CodeOutlivesARestartAndTheOutboxIsBesideTheDatabase AdminAuditTest.BackupHoldsItAndRestoreEntersItself
    AdminReportTest.OutputNeverHitsTheDatabaseOrAnythingButAFile OperatorTest.Damaged* OperatorTest.MissingDatabaseIsNotReadyAndNotMade
    PatientRenewalTest.GoesBeforeThoseThatWaitToWrite
    PatientRenewalTest.AccountThatAsksTooOftenWaitsLikeOthersAndIsAnswered RenewalTest.FullStorage* RenewalTest.ReadOnlyStorage*
    StorageFailureTest.Damaged* StorageFailureTest.FullStorage* StorageFailureTest.ReadOnlyFile*)
list(JOIN without_database ":" without_database)
list(JOIN about_sqlite ":" about_sqlite)

# discover_on_postgres(FILTER [PROPERTY VALUE ...])
function(discover_on_postgres filter)
    gtest_discover_tests(ServerTests NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
        TEST_PREFIX "PostgreSQL." TEST_LIST postgres_tests TEST_FILTER "${filter}"
        PROPERTIES TIMEOUT 600 FIXTURES_REQUIRED PostgreSQL
        ENVIRONMENT "CLOCKWELL_TEST_POSTGRES=postgresql://postgres@/postgres?host=${postgres_folder}" ${ARGN})
endfunction()
discover_on_postgres("Postgres*")
discover_on_postgres("-Postgres*:${without_database}:${about_sqlite}" LABELS AgainOnPostgreSQL)
