-- The portal's database: every table that its pages read or write, and one stored function.
--
--   mariadb --user=... DATABASE < db/schema.sql
--
-- Needs MariaDB 10.11 or newer with lower_case_table_names=1 (statements spell table names in
-- several cases) and the server's time zone tables loaded. Runs on an empty database; running it
-- again changes nothing that is there.
--
-- Rules that hold for every table:
--   * The telephone system and its services fill many of these tables and name only some of the
--     columns, so every column but an identifying one has a default.
--   * Stamps are TIMESTAMP, kept in UTC by the server: a session's time zone moves the data and
--     NOW() together, so that "today" is the reader's day.
--   * Flags are TINYINT 0 or 1, seconds are signed INT, money is DECIMAL(12,4).
--   * Text is utf8mb4 and compares without regard to case.
--   * Some statements join tables with unqualified column names. Where a column's absence matters
--     for that, the table says so.

SET NAMES utf8mb4 COLLATE utf8mb4_general_ci;
SET default_storage_engine = InnoDB;
ALTER DATABASE CHARACTER SET utf8mb4 COLLATE utf8mb4_general_ci;

-- ---------------------------------------------------------------- customers, users and rights

CREATE TABLE IF NOT EXISTS Customer (
    id           INT NOT NULL AUTO_INCREMENT,
    SubscriberId INT NOT NULL DEFAULT 0,        -- the parent customer; 0: none
    CustomerName VARCHAR(255) NOT NULL DEFAULT '',
    CustomerType INT NOT NULL DEFAULT 0,        -- 1: searches span the customers below it
    ThemeId      INT NOT NULL DEFAULT 0,
    PRIMARY KEY (id),
    KEY SubscriberId (SubscriberId)
);

-- A person who signs in. Ids are unique over all customers: rights refer to them alone.
-- No column `name`, `CustomerName`, `ThemeId` or `CustomerType` here: joined queries use those
-- words for the other table's column.
CREATE TABLE IF NOT EXISTS CustomerContact (
    id           INT NOT NULL AUTO_INCREMENT,
    customerid   INT NOT NULL,
    username     VARCHAR(128) NOT NULL,
    passwordHash VARCHAR(128) NOT NULL DEFAULT '',  -- bcrypt ($2y$...); empty: cannot sign in here
    fullName     VARCHAR(128) NOT NULL DEFAULT '',
    email        VARCHAR(255) NOT NULL DEFAULT '',
    telephone    VARCHAR(64) NOT NULL DEFAULT '',
    PRIMARY KEY (id),
    KEY username (username),
    KEY customerid (customerid)
);

CREATE TABLE IF NOT EXISTS VirtualCallServer (
    id                   INT NOT NULL AUTO_INCREMENT,
    customerid           INT NOT NULL,
    primaryLDAPServer    VARCHAR(128) NOT NULL DEFAULT '',
    primaryLDAPUser      VARCHAR(255) NOT NULL DEFAULT '',
    primaryLDAPPassword  VARCHAR(128) NOT NULL DEFAULT '',
    voicemailFTPPassword VARCHAR(128) NOT NULL DEFAULT '',
    HostName             VARCHAR(128) NOT NULL DEFAULT '',
    emailsourceaddr      VARCHAR(128) NOT NULL DEFAULT '',  -- mail domain of the sender address
    PRIMARY KEY (id),
    KEY customerid (customerid)
);

CREATE TABLE IF NOT EXISTS VirtualHost (
    id                  INT NOT NULL AUTO_INCREMENT,
    serverName          VARCHAR(128) NOT NULL,              -- as the web server names itself
    VirtualCallServerid INT NOT NULL,
    PRIMARY KEY (id),
    KEY serverName (serverName)
);

CREATE TABLE IF NOT EXISTS CustomerAttribute (
    CustomerId  INT NOT NULL,
    AttribName  VARCHAR(64) NOT NULL,   -- startday, weeklength, shiftlength, markup, vatrate, ...
    AttribValue VARCHAR(255) NULL,
    PRIMARY KEY (CustomerId, AttribName)
);

-- Several rows a name are usual: one 'myreport' row for each favourite.
CREATE TABLE IF NOT EXISTS CustomerContactAttrib (
    userid      INT NOT NULL,
    attribname  VARCHAR(64) NOT NULL,   -- timezone, reportmask, administrator, superqueue, ...
    attribvalue VARCHAR(255) NULL,
    KEY userid (userid, attribname, attribvalue)
);

CREATE TABLE IF NOT EXISTS CustomerRights (
    customerid INT NOT NULL,
    rightsid   INT NOT NULL,
    PRIMARY KEY (customerid, rightsid)
);

CREATE TABLE IF NOT EXISTS CustomerUserRight (
    customerid INT NOT NULL,
    guid       VARCHAR(64) NOT NULL,    -- the contact's id as text, or a directory user's GUID
    rightid    INT NOT NULL,
    PRIMARY KEY (guid, rightid, customerid)
);

-- What a contact may see. A contact without a row of a type is not restricted for that type.
-- No column id, name or cn.
CREATE TABLE IF NOT EXISTS CallLogPermissions (
    contactid    INT NOT NULL,
    customerid   INT NOT NULL,
    type         VARCHAR(16) NOT NULL,  -- User, Department, Inbox or Teammate
    entityNumber VARCHAR(64) NOT NULL,  -- the directory's telephone number, or the inbox's id
    logging      TINYINT NOT NULL DEFAULT 0,
    recording    TINYINT NOT NULL DEFAULT 0,
    queue        TINYINT NOT NULL DEFAULT 0,
    agent        TINYINT NOT NULL DEFAULT 0,
    PRIMARY KEY (contactid, customerid, type, entityNumber)
);

-- ---------------------------------------------------------------- call log and its reports

-- One row a leg of a call. A is the caller, B the party dialled, B_Remote who answered ('' nobody,
-- '!...' a service of the telephone system such as '!LeaveVoicemail').
-- The primary key puts a customer's period in one piece of the table.
CREATE TABLE IF NOT EXISTS CallLog (
    id             BIGINT NOT NULL AUTO_INCREMENT,
    customerid     INT NOT NULL,
    gmtdatetime    TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP,   -- start of the leg
    confId         VARCHAR(40) NOT NULL DEFAULT '',     -- names the leg and its recordings
    transferConfId VARCHAR(40) NOT NULL DEFAULT '',     -- the leg it was transferred to
    transfercall   TINYINT NOT NULL DEFAULT 0,          -- 0 plain, 1 transferred away, 2 received
                                                        -- by transfer, 3 4 5 the system's own
    A_Num          VARCHAR(64) NOT NULL DEFAULT '',
    A_Name         VARCHAR(128) NOT NULL DEFAULT '',
    A_ShortNum     VARCHAR(32) NOT NULL DEFAULT '',
    A_Trunk        VARCHAR(128) NOT NULL DEFAULT '',    -- directory name of the trunk; '': inside
    A_Out          TINYINT NOT NULL DEFAULT 0,
    B_Num          VARCHAR(64) NOT NULL DEFAULT '',
    B_Name         VARCHAR(128) NOT NULL DEFAULT '',
    B_ShortNum     VARCHAR(32) NOT NULL DEFAULT '',
    B_Remote       VARCHAR(64) NOT NULL DEFAULT '',
    B_RemoteName   VARCHAR(128) NOT NULL DEFAULT '',
    B_Trunk        VARCHAR(128) NOT NULL DEFAULT '',
    B_Out          TINYINT NOT NULL DEFAULT 0,
    targetNumber   VARCHAR(64) NULL,                    -- the number an outside caller dialled
    accountCode    VARCHAR(64) NOT NULL DEFAULT '',
    origCostCentre VARCHAR(64) NOT NULL DEFAULT '',     -- the department that the leg is booked to
    callduration   INT NOT NULL DEFAULT 0,              -- first ring to end
    callconnected  INT NOT NULL DEFAULT 0,              -- talking; ringing is the difference
    hasconnected   TINYINT NOT NULL DEFAULT 0,          -- 1: a person answered
    totalcost      DECIMAL(12,4) NOT NULL DEFAULT 0,    -- before uplift and VAT
    PRIMARY KEY (customerid, gmtdatetime, id),
    KEY id (id),
    KEY confId (confId),
    KEY B_Num (customerid, B_Num, gmtdatetime),
    KEY targetNumber (customerid, targetNumber),        -- which numbers there are
    -- One person's calls. The name stands first, so that a report of everybody does not read the
    -- whole customer by one of these, but the period by the primary key.
    KEY A_Name (A_Name, customerid, gmtdatetime),
    KEY B_Name (B_Name, customerid, gmtdatetime),
    KEY B_RemoteName (B_RemoteName, customerid, gmtdatetime)
);
-- For databases from before these keys.
ALTER TABLE CallLog
    ADD KEY IF NOT EXISTS A_Name (A_Name, customerid, gmtdatetime),
    ADD KEY IF NOT EXISTS B_Name (B_Name, customerid, gmtdatetime),
    ADD KEY IF NOT EXISTS B_RemoteName (B_RemoteName, customerid, gmtdatetime),
    ADD KEY IF NOT EXISTS targetNumber (customerid, targetNumber);

CREATE TABLE IF NOT EXISTS CallLogGroup (
    group_id    INT NOT NULL AUTO_INCREMENT,
    group_name  VARCHAR(128) NOT NULL,
    customer_id INT NOT NULL,
    contactid   INT NOT NULL DEFAULT 0,                 -- its owner; 0: everyone's
    PRIMARY KEY (group_id),
    KEY customer_id (customer_id, group_name)
);

CREATE TABLE IF NOT EXISTS CallLogGroupMembers (
    group_id      INT NOT NULL,
    member_name   VARCHAR(128) NOT NULL DEFAULT '',
    member_number VARCHAR(64) NOT NULL DEFAULT '',
    guid          VARCHAR(64) NOT NULL DEFAULT '',
    type          CHAR(1) NOT NULL DEFAULT 'U',         -- U user, D department, G nested group
    KEY group_id (group_id, type)
);

-- The report catalogue, filled by script/catalogue. An opt_ switch shows the criterion of its name.
CREATE TABLE IF NOT EXISTS CallReport (
    pagename             VARCHAR(64) NOT NULL,
    name                 VARCHAR(128) NOT NULL DEFAULT '',
    description          VARCHAR(1024) NOT NULL DEFAULT '',
    category             INT NOT NULL DEFAULT 0,
    hidden               TINYINT NOT NULL DEFAULT 0,    -- 1: not listed, still run by name
    listorder            INT NOT NULL DEFAULT 0,
    SQLQuery             MEDIUMTEXT NULL,               -- template with [placeholders]
    reportFile           VARCHAR(255) NOT NULL DEFAULT '',  -- column definition file
    globalSQL            MEDIUMTEXT NULL,
    format               VARCHAR(255) NOT NULL DEFAULT '',  -- words (docs/reports.md)
    multititle           VARCHAR(255) NOT NULL DEFAULT '',
    multikeyfield        VARCHAR(64) NOT NULL DEFAULT '',
    multikeyfield2       VARCHAR(64) NOT NULL DEFAULT '',
    opt_group            TINYINT NOT NULL DEFAULT 0,
    opt_department       TINYINT NOT NULL DEFAULT 0,
    opt_user             TINYINT NOT NULL DEFAULT 0,
    opt_interval         TINYINT NOT NULL DEFAULT 0,
    opt_account          TINYINT NOT NULL DEFAULT 0,
    opt_company          TINYINT NOT NULL DEFAULT 0,
    opt_trunkgroup       TINYINT NOT NULL DEFAULT 0,
    opt_trunk            TINYINT NOT NULL DEFAULT 0,
    opt_int_ext          TINYINT NOT NULL DEFAULT 0,
    opt_contact          TINYINT NOT NULL DEFAULT 0,
    opt_agent            TINYINT NOT NULL DEFAULT 0,
    opt_queue            TINYINT NOT NULL DEFAULT 0,
    opt_time_limit       TINYINT NOT NULL DEFAULT 0,
    opt_sla              TINYINT NOT NULL DEFAULT 0,
    opt_in_out           TINYINT NOT NULL DEFAULT 0,
    opt_second_for_field TINYINT NOT NULL DEFAULT 0,
    opt_ddi              TINYINT NOT NULL DEFAULT 0,
    opt_outdept          TINYINT NOT NULL DEFAULT 0,
    opt_inbox            TINYINT NOT NULL DEFAULT 0,
    opt_tag              TINYINT NOT NULL DEFAULT 0,
    help                 TEXT NULL,                     -- for readers, a paragraph a line
    PRIMARY KEY (pagename)
);
ALTER TABLE CallReport ADD COLUMN IF NOT EXISTS help TEXT NULL,
    MODIFY COLUMN format VARCHAR(255) NOT NULL DEFAULT '';

-- Exactly these two columns, in this order: a query adds category 4 with UNION SELECT.
CREATE TABLE IF NOT EXISTS CallReportType (
    id   INT NOT NULL,
    name VARCHAR(64) NOT NULL,
    PRIMARY KEY (id)
);
INSERT IGNORE INTO CallReportType (id, name)
VALUES (1, 'Call'), (2, 'Cost'), (3, 'Trunk and Line'), (5, 'Media');

CREATE TABLE IF NOT EXISTS CallReportQuickReport (
    id         INT NOT NULL AUTO_INCREMENT,
    customerId INT NOT NULL,
    ContactId  INT NOT NULL,
    url        TEXT NOT NULL,                           -- the saved criteria, percent-encoded
    name       VARCHAR(255) NOT NULL,
    PRIMARY KEY (id),
    KEY customerId (customerId, ContactId)
);

-- What a dialled number's beginning stands for; the longest beginning that fits counts. customerid
-- 0: for every customer, behind the international prefix 00, as the ITU's list of E.164 country
-- codes assigns them. A customer's own rows name its national prefixes and stand above these.
CREATE TABLE IF NOT EXISTS DiallingPrefix (
    customerid INT NOT NULL DEFAULT 0,
    prefix     VARCHAR(7) NOT NULL,
    name       VARCHAR(64) NOT NULL,
    PRIMARY KEY (prefix, customerid)
);
INSERT IGNORE INTO DiallingPrefix (customerid, prefix, name) VALUES
    (0, '00', 'International, other'), (0, '001', 'North America'), (0, '0020', 'Egypt'),
    (0, '00212', 'Morocco'), (0, '00213', 'Algeria'), (0, '00216', 'Tunisia'),
    (0, '00218', 'Libya'), (0, '00220', 'Gambia'), (0, '00221', 'Senegal'),
    (0, '00225', 'Côte d''Ivoire'), (0, '00230', 'Mauritius'), (0, '00233', 'Ghana'),
    (0, '00234', 'Nigeria'), (0, '00237', 'Cameroon'), (0, '00243', 'Congo (Democratic Republic)'),
    (0, '00244', 'Angola'), (0, '00248', 'Seychelles'), (0, '00249', 'Sudan'),
    (0, '00250', 'Rwanda'), (0, '00251', 'Ethiopia'), (0, '00254', 'Kenya'),
    (0, '00255', 'Tanzania'), (0, '00256', 'Uganda'), (0, '00258', 'Mozambique'),
    (0, '00260', 'Zambia'), (0, '00263', 'Zimbabwe'), (0, '00264', 'Namibia'),
    (0, '00265', 'Malawi'), (0, '00267', 'Botswana'), (0, '0027', 'South Africa'),
    (0, '00298', 'Faroe Islands'), (0, '00299', 'Greenland'), (0, '0030', 'Greece'),
    (0, '0031', 'Netherlands'), (0, '0032', 'Belgium'), (0, '0033', 'France'),
    (0, '0034', 'Spain'), (0, '00350', 'Gibraltar'), (0, '00351', 'Portugal'),
    (0, '00352', 'Luxembourg'), (0, '00353', 'Ireland'), (0, '00354', 'Iceland'),
    (0, '00355', 'Albania'), (0, '00356', 'Malta'), (0, '00357', 'Cyprus'),
    (0, '00358', 'Finland'), (0, '00359', 'Bulgaria'), (0, '0036', 'Hungary'),
    (0, '00370', 'Lithuania'), (0, '00371', 'Latvia'), (0, '00372', 'Estonia'),
    (0, '00373', 'Moldova'), (0, '00374', 'Armenia'), (0, '00375', 'Belarus'),
    (0, '00376', 'Andorra'), (0, '00377', 'Monaco'), (0, '00378', 'San Marino'),
    (0, '00380', 'Ukraine'), (0, '00381', 'Serbia'), (0, '00382', 'Montenegro'),
    (0, '00383', 'Kosovo'), (0, '00385', 'Croatia'), (0, '00386', 'Slovenia'),
    (0, '00387', 'Bosnia and Herzegovina'), (0, '00389', 'North Macedonia'), (0, '0039', 'Italy'),
    (0, '0040', 'Romania'), (0, '0041', 'Switzerland'), (0, '00420', 'Czechia'),
    (0, '00421', 'Slovakia'), (0, '00423', 'Liechtenstein'), (0, '0043', 'Austria'),
    (0, '0044', 'United Kingdom'), (0, '0045', 'Denmark'), (0, '0046', 'Sweden'),
    (0, '0047', 'Norway'), (0, '0048', 'Poland'), (0, '0049', 'Germany'), (0, '00501', 'Belize'),
    (0, '00502', 'Guatemala'), (0, '00503', 'El Salvador'), (0, '00504', 'Honduras'),
    (0, '00505', 'Nicaragua'), (0, '00506', 'Costa Rica'), (0, '00507', 'Panama'),
    (0, '0051', 'Peru'), (0, '0052', 'Mexico'), (0, '0053', 'Cuba'), (0, '0054', 'Argentina'),
    (0, '0055', 'Brazil'), (0, '0056', 'Chile'), (0, '0057', 'Colombia'), (0, '0058', 'Venezuela'),
    (0, '00591', 'Bolivia'), (0, '00593', 'Ecuador'), (0, '00595', 'Paraguay'),
    (0, '00598', 'Uruguay'), (0, '0060', 'Malaysia'), (0, '0061', 'Australia'),
    (0, '0062', 'Indonesia'), (0, '0063', 'Philippines'), (0, '0064', 'New Zealand'),
    (0, '0065', 'Singapore'), (0, '0066', 'Thailand'), (0, '00673', 'Brunei'),
    (0, '00675', 'Papua New Guinea'), (0, '00679', 'Fiji'), (0, '007', 'Russia and Kazakhstan'),
    (0, '00800', 'International freephone'), (0, '0081', 'Japan'), (0, '0082', 'South Korea'),
    (0, '0084', 'Vietnam'), (0, '00852', 'Hong Kong'), (0, '00853', 'Macao'),
    (0, '00855', 'Cambodia'), (0, '00856', 'Laos'), (0, '0086', 'China'),
    (0, '00870', 'Satellite (Inmarsat)'), (0, '00880', 'Bangladesh'),
    (0, '00881', 'Satellite (mobile)'), (0, '00886', 'Taiwan'), (0, '0090', 'Turkey'),
    (0, '0091', 'India'), (0, '0092', 'Pakistan'), (0, '0093', 'Afghanistan'),
    (0, '0094', 'Sri Lanka'), (0, '0095', 'Myanmar'), (0, '00960', 'Maldives'),
    (0, '00961', 'Lebanon'), (0, '00962', 'Jordan'), (0, '00963', 'Syria'), (0, '00964', 'Iraq'),
    (0, '00965', 'Kuwait'), (0, '00966', 'Saudi Arabia'), (0, '00967', 'Yemen'),
    (0, '00968', 'Oman'), (0, '00970', 'Palestine'), (0, '00971', 'United Arab Emirates'),
    (0, '00972', 'Israel'), (0, '00973', 'Bahrain'), (0, '00974', 'Qatar'), (0, '00975', 'Bhutan'),
    (0, '00976', 'Mongolia'), (0, '00977', 'Nepal'), (0, '0098', 'Iran'),
    (0, '00992', 'Tajikistan'), (0, '00993', 'Turkmenistan'), (0, '00994', 'Azerbaijan'),
    (0, '00995', 'Georgia'), (0, '00996', 'Kyrgyzstan'), (0, '00998', 'Uzbekistan');

-- One row a calendar day, so that reports can enumerate the days of a period.
CREATE TABLE IF NOT EXISTS LkupDates (
    gmtdatetime DATETIME NOT NULL,
    PRIMARY KEY (gmtdatetime)
);
INSERT IGNORE INTO LkupDates (gmtdatetime)
SELECT '2010-01-01' + INTERVAL seq DAY FROM seq_0_to_18261;     -- to the end of 2059

CREATE TABLE IF NOT EXISTS Heartbeat (
    id              INT NOT NULL AUTO_INCREMENT,
    customerid      INT NOT NULL,
    ip              VARCHAR(64) NOT NULL,
    name            VARCHAR(64) NOT NULL DEFAULT '',
    status          INT NOT NULL DEFAULT 0,             -- 1: well, anything else: warning
    lastupdate      TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP,
    heartbeattypeid INT NOT NULL,                       -- 1 calls, 6 recordings, 7 copy, 8 purge
    PRIMARY KEY (id),
    KEY customerid (customerid, heartbeattypeid)
);

-- ---------------------------------------------------------------- contact centre

-- One row a change of state: the state left, how long it had lasted, the state entered.
CREATE TABLE IF NOT EXISTS CallCentreAgentStateLog (
    id                 INT NOT NULL AUTO_INCREMENT,
    timestamp          TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP,
    customerid         INT NOT NULL,
    agentName          VARCHAR(255) NOT NULL DEFAULT '',
    AgentNumber        VARCHAR(64) NOT NULL DEFAULT '',
    prevState          VARCHAR(32) NOT NULL DEFAULT '',
    newState           VARCHAR(32) NOT NULL DEFAULT '',
    secondsInPrevState INT NOT NULL DEFAULT 0,
    clearCode          INT NOT NULL DEFAULT 0,          -- reason when not available; 0 unknown
    PRIMARY KEY (id),
    KEY customerid (customerid, timestamp),
    KEY agentName (agentName, timestamp, id)
);

-- The agents' present status. No column timestamp, prevState, newState or sec: it is joined with
-- the log by unqualified names.
CREATE TABLE IF NOT EXISTS CallCentreAgent_tmp (
    id          INT NOT NULL,
    agentName   VARCHAR(255) NOT NULL DEFAULT '',
    agentNumber VARCHAR(64) NOT NULL DEFAULT '',
    customerId  INT NOT NULL,
    confid      VARCHAR(40) NOT NULL DEFAULT '',
    NAReason    INT NOT NULL DEFAULT 0,
    PRIMARY KEY (id),
    KEY customerId (customerId, agentNumber)
);

CREATE TABLE IF NOT EXISTS CallCentreAgentHelpLog (
    id          INT NOT NULL AUTO_INCREMENT,
    agentId     INT NOT NULL,
    gmtDateTime TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP,
    newState    INT NOT NULL,                           -- 1: help asked for
    PRIMARY KEY (id),
    KEY agentId (agentId, gmtDateTime)
);

-- Commands for the contact-centre service, which removes a row when it has obeyed.
CREATE TABLE IF NOT EXISTS CallCentreCommand (
    id         INT NOT NULL AUTO_INCREMENT,
    customerid INT NOT NULL,
    command    VARCHAR(64) NOT NULL,
    PRIMARY KEY (id)
);

CREATE TABLE IF NOT EXISTS CallCentreQueue (
    id                      INT NOT NULL AUTO_INCREMENT,
    customerid              INT NOT NULL,
    queueName               VARCHAR(128) NOT NULL DEFAULT '',
    queueNumber             VARCHAR(64) NOT NULL DEFAULT '',
    queueGuid               VARCHAR(64) NOT NULL DEFAULT '',
    priority                INT NOT NULL DEFAULT 0,
    escalatePriority        INT NOT NULL DEFAULT 0,
    escalatePeriod          INT NOT NULL DEFAULT 0,
    boostPriority           INT NOT NULL DEFAULT 0,
    blacklistMaxNotAnswered INT NOT NULL DEFAULT 0,
    announcementMode        INT NOT NULL DEFAULT 0,
    announcementMedia       VARCHAR(255) NOT NULL DEFAULT '',
    autoFeedMode            INT NOT NULL DEFAULT 0,
    distributionMode        INT NOT NULL DEFAULT 0,
    alternatePriority       INT NOT NULL DEFAULT 0,
    alternatePriority2      INT NOT NULL DEFAULT 0,
    welcomeAnnouncement     VARCHAR(1024) NOT NULL DEFAULT '',
    PRIMARY KEY (id),
    KEY customerid (customerid, queueNumber)
);

CREATE TABLE IF NOT EXISTS CallCentreAgent (
    id                INT NOT NULL AUTO_INCREMENT,
    customerid        INT NOT NULL,
    agentName         VARCHAR(255) NOT NULL DEFAULT '',
    agentNumber       VARCHAR(64) NOT NULL DEFAULT '',
    agentGuid         VARCHAR(64) NOT NULL DEFAULT '',
    agentAutoLoggedIn TINYINT NOT NULL DEFAULT 0,
    groupChange       TINYINT NOT NULL DEFAULT 0,
    blacklistSeconds  INT NOT NULL DEFAULT 0,
    agentTimezone     VARCHAR(64) NOT NULL DEFAULT '',
    NAProfile         INT NOT NULL DEFAULT 0,
    PRIMARY KEY (id),
    KEY customerid (customerid, agentNumber)
);

CREATE TABLE IF NOT EXISTS CallCentreCompletionCode (
    id         INT NOT NULL AUTO_INCREMENT,
    customerid INT NOT NULL,
    name       VARCHAR(255) NOT NULL,
    enabled    TINYINT NOT NULL DEFAULT 1,              -- 0 deleted, 1 live, 2 during a save
    extend     VARCHAR(64) NOT NULL DEFAULT '',
    `order`    INT NOT NULL DEFAULT 0,
    parent     INT NOT NULL DEFAULT 0,
    folder     TINYINT NOT NULL DEFAULT 0,
    PRIMARY KEY (id),
    KEY customerid (customerid, enabled)
);

-- Rows are written as (customerid, queueid, codeid), in this order.
CREATE TABLE IF NOT EXISTS CallCentreQueueCompletionCode (
    customerid INT NOT NULL,
    queueid    INT NOT NULL,
    codeid     INT NOT NULL,
    KEY queueid (queueid),
    KEY codeid (codeid)
);

CREATE TABLE IF NOT EXISTS CallCentreNAReasonCode (
    id             INT NOT NULL AUTO_INCREMENT,
    customerid     INT NOT NULL,
    name           VARCHAR(128) NOT NULL,
    enabled        TINYINT NOT NULL DEFAULT 1,
    showlogout     TINYINT NOT NULL DEFAULT 0,
    showNA         TINYINT NOT NULL DEFAULT 1,
    autodnd        TINYINT NOT NULL DEFAULT 0,
    supervisorOnly TINYINT NOT NULL DEFAULT 0,
    `order`        INT NOT NULL DEFAULT 0,
    PRIMARY KEY (id),
    KEY customerid (customerid)
);

CREATE TABLE IF NOT EXISTS CallCentreNAProfile (
    id         INT NOT NULL AUTO_INCREMENT,
    customerid INT NOT NULL DEFAULT 0,
    name       VARCHAR(128) NOT NULL,
    PRIMARY KEY (id),
    KEY customerid (customerid)
);

CREATE TABLE IF NOT EXISTS CallCentreNAProfileMember (
    profile    INT NOT NULL,
    naid       INT NOT NULL,
    customerid INT NOT NULL DEFAULT 0,
    PRIMARY KEY (profile, naid)
);

CREATE TABLE IF NOT EXISTS CallCentreSLAs (
    id         INT NOT NULL AUTO_INCREMENT,
    customerid INT NOT NULL,
    name       VARCHAR(128) NOT NULL,
    answerSLA  INT NOT NULL DEFAULT 0, handleSLA  INT NOT NULL DEFAULT 0,
    answerSLA1 INT NOT NULL DEFAULT 0, handleSLA1 INT NOT NULL DEFAULT 0,
    answerSLA2 INT NOT NULL DEFAULT 0, handleSLA2 INT NOT NULL DEFAULT 0,
    answerSLA3 INT NOT NULL DEFAULT 0, handleSLA3 INT NOT NULL DEFAULT 0,
    answerSLA4 INT NOT NULL DEFAULT 0, handleSLA4 INT NOT NULL DEFAULT 0,
    PRIMARY KEY (id),
    KEY customerid (customerid)
);

-- ---------------------------------------------------------------- mirrors of the directory
-- Filled by the replication service, which may repeat an entry while it works: no unique keys.

CREATE TABLE IF NOT EXISTS LDAPUsers (
    GUID            VARCHAR(64) NOT NULL DEFAULT '',
    customerid      INT NOT NULL,
    cn              VARCHAR(128) NOT NULL,
    telephoneNumber VARCHAR(64) NOT NULL DEFAULT '',
    _company        VARCHAR(128) NOT NULL DEFAULT '',   -- the company's GUID
    KEY GUID (customerid, GUID),
    KEY telephoneNumber (customerid, telephoneNumber),
    KEY cn (customerid, cn)
);
CREATE TABLE IF NOT EXISTS LDAPDepartments LIKE LDAPUsers;
CREATE TABLE IF NOT EXISTS LDAPGroups LIKE LDAPUsers;

CREATE TABLE IF NOT EXISTS LDAPCompanies (
    GUID       VARCHAR(64) NOT NULL DEFAULT '',
    customerid INT NOT NULL,
    cn         VARCHAR(128) NOT NULL,
    KEY customerid (customerid, cn)
);

CREATE TABLE IF NOT EXISTS LDAPTrunks (
    customerId  INT NOT NULL,
    dn          VARCHAR(255) NOT NULL,
    description VARCHAR(255) NOT NULL DEFAULT '',       -- holds the word "internal" for a tie line
    KEY customerId (customerId)
);

CREATE TABLE IF NOT EXISTS LDAPCapabilities (
    GUID              VARCHAR(64) NOT NULL DEFAULT '',
    customerid        INT NOT NULL DEFAULT 0,
    capability        VARCHAR(128) NOT NULL DEFAULT '',
    capabilityPercent INT NOT NULL DEFAULT 0,
    parent            VARCHAR(255) NOT NULL DEFAULT '',
    _parent           VARCHAR(64) NOT NULL DEFAULT '',
    KEY GUID (GUID),
    KEY _parent (_parent)
);

-- ---------------------------------------------------------------- shared inbox
-- Messages and teammates are joined by unqualified names: only id and customerid may be in both.

CREATE TABLE IF NOT EXISTS FrontMessage (
    id         VARCHAR(64) NOT NULL,
    customerid INT NOT NULL DEFAULT 0,
    convid     VARCHAR(64) NOT NULL DEFAULT '',
    createdAt  TIMESTAMP(3) NOT NULL DEFAULT CURRENT_TIMESTAMP(3),
    fromHandle VARCHAR(1024) NOT NULL DEFAULT '',
    toHandle   VARCHAR(1024) NOT NULL DEFAULT '',
    author     VARCHAR(64) NOT NULL DEFAULT '',         -- a teammate's id; '': from outside
    inboxid    VARCHAR(64) NOT NULL DEFAULT '',
    PRIMARY KEY (id),
    KEY createdAt (customerid, createdAt)
);
ALTER TABLE FrontMessage ADD COLUMN IF NOT EXISTS inboxid VARCHAR(64) NOT NULL DEFAULT '';

CREATE TABLE IF NOT EXISTS FrontTeammate (
    id         VARCHAR(64) NOT NULL,
    customerid INT NOT NULL DEFAULT 0,
    firstName  VARCHAR(128) NOT NULL DEFAULT '',
    lastName   VARCHAR(128) NOT NULL DEFAULT '',
    PRIMARY KEY (id)
);

CREATE TABLE IF NOT EXISTS FrontInbox (
    id         VARCHAR(64) NOT NULL,
    customerid INT NOT NULL DEFAULT 0,
    name       VARCHAR(128) NOT NULL DEFAULT '',
    isPrivate  TINYINT NOT NULL DEFAULT 0,
    PRIMARY KEY (id)
);

CREATE TABLE IF NOT EXISTS FrontTag (
    id         VARCHAR(64) NOT NULL,
    customerid INT NOT NULL DEFAULT 0,
    name       VARCHAR(128) NOT NULL DEFAULT '',
    PRIMARY KEY (id),
    KEY customerid (customerid, name)
);

-- The tags of each conversation.
CREATE TABLE IF NOT EXISTS FrontConversationTag (
    customerid INT NOT NULL,
    convid     VARCHAR(64) NOT NULL,
    tagid      VARCHAR(64) NOT NULL,
    PRIMARY KEY (customerid, convid, tagid)
);

CREATE TABLE IF NOT EXISTS FrontSLAs (
    id          INT NOT NULL AUTO_INCREMENT,
    customerid  INT NOT NULL,
    name        VARCHAR(128) NOT NULL,
    responseSLA INT NOT NULL DEFAULT 0,
    PRIMARY KEY (id),
    KEY customerid (customerid)
);

-- ---------------------------------------------------------------- recordings

-- Belongs to the customer of the call with its confId. No column of CallLog's but confId and id.
CREATE TABLE IF NOT EXISTS CallRecordings (
    id                 BIGINT NOT NULL AUTO_INCREMENT,
    confId             VARCHAR(40) NOT NULL DEFAULT '',
    recordedOn         TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP,
    mailbox            VARCHAR(64) NOT NULL DEFAULT '',
    mailboxName        VARCHAR(128) NOT NULL DEFAULT '',
    wavPath            VARCHAR(255) NOT NULL DEFAULT '',
    wavFile            VARCHAR(191) NULL,
    concurrency        INT NOT NULL DEFAULT 0,
    ArchivedVolumeName VARCHAR(64) NOT NULL DEFAULT '', -- label of the archive disk; '': on line
    ArchivedPath       VARCHAR(255) NOT NULL DEFAULT '',
    hexkey             BLOB NOT NULL DEFAULT '',        -- scrambled 64 hex digits; '': plain
    checksum           INT UNSIGNED NOT NULL DEFAULT 0,
    PRIMARY KEY (id),
    KEY confId (confId),
    KEY wavFile (wavFile)
);

CREATE TABLE IF NOT EXISTS CallRecordingsLog (
    id              BIGINT NOT NULL AUTO_INCREMENT,
    callrecordingid BIGINT NOT NULL,
    accessBy        VARCHAR(128) NOT NULL DEFAULT '',
    dateaccessed    TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP,
    clientip        VARCHAR(64) NOT NULL DEFAULT '',
    action          VARCHAR(255) NOT NULL DEFAULT '',
    playerSession   VARCHAR(64) NOT NULL DEFAULT '',
    PRIMARY KEY (id),
    KEY callrecordingid (callrecordingid)
);

-- ---------------------------------------------------------------- wallboards

CREATE TABLE IF NOT EXISTS Wallboard (
    id         INT NOT NULL AUTO_INCREMENT,
    customerid INT NOT NULL DEFAULT 0,
    width      INT NOT NULL DEFAULT 4,                  -- panels a row, at most 12
    height     INT NOT NULL DEFAULT 1,
    name       VARCHAR(128) NOT NULL DEFAULT '',
    PRIMARY KEY (id),
    KEY customerid (customerid)
);

-- One row of panels; the columns that begin with a number belong to the panel in that place.
CREATE TABLE IF NOT EXISTS WallboardPanel (
    id          INT NOT NULL AUTO_INCREMENT,
    customerid  INT NOT NULL DEFAULT 0,
    wallboardid INT NOT NULL,
    tel         VARCHAR(64) NOT NULL DEFAULT '',
    name        VARCHAR(128) NOT NULL DEFAULT '',
    pos         INT NOT NULL DEFAULT 0,
    `1name` VARCHAR(32) NOT NULL DEFAULT '', `1title` VARCHAR(64) NOT NULL DEFAULT '',
    `1compare` VARCHAR(8) NOT NULL DEFAULT '',
    `1warning` VARCHAR(16) NOT NULL DEFAULT '', `1alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `2name` VARCHAR(32) NOT NULL DEFAULT '', `2title` VARCHAR(64) NOT NULL DEFAULT '',
    `2compare` VARCHAR(8) NOT NULL DEFAULT '',
    `2warning` VARCHAR(16) NOT NULL DEFAULT '', `2alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `3name` VARCHAR(32) NOT NULL DEFAULT '', `3title` VARCHAR(64) NOT NULL DEFAULT '',
    `3compare` VARCHAR(8) NOT NULL DEFAULT '',
    `3warning` VARCHAR(16) NOT NULL DEFAULT '', `3alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `4name` VARCHAR(32) NOT NULL DEFAULT '', `4title` VARCHAR(64) NOT NULL DEFAULT '',
    `4compare` VARCHAR(8) NOT NULL DEFAULT '',
    `4warning` VARCHAR(16) NOT NULL DEFAULT '', `4alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `5name` VARCHAR(32) NOT NULL DEFAULT '', `5title` VARCHAR(64) NOT NULL DEFAULT '',
    `5compare` VARCHAR(8) NOT NULL DEFAULT '',
    `5warning` VARCHAR(16) NOT NULL DEFAULT '', `5alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `6name` VARCHAR(32) NOT NULL DEFAULT '', `6title` VARCHAR(64) NOT NULL DEFAULT '',
    `6compare` VARCHAR(8) NOT NULL DEFAULT '',
    `6warning` VARCHAR(16) NOT NULL DEFAULT '', `6alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `7name` VARCHAR(32) NOT NULL DEFAULT '', `7title` VARCHAR(64) NOT NULL DEFAULT '',
    `7compare` VARCHAR(8) NOT NULL DEFAULT '',
    `7warning` VARCHAR(16) NOT NULL DEFAULT '', `7alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `8name` VARCHAR(32) NOT NULL DEFAULT '', `8title` VARCHAR(64) NOT NULL DEFAULT '',
    `8compare` VARCHAR(8) NOT NULL DEFAULT '',
    `8warning` VARCHAR(16) NOT NULL DEFAULT '', `8alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `9name` VARCHAR(32) NOT NULL DEFAULT '', `9title` VARCHAR(64) NOT NULL DEFAULT '',
    `9compare` VARCHAR(8) NOT NULL DEFAULT '',
    `9warning` VARCHAR(16) NOT NULL DEFAULT '', `9alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `10name` VARCHAR(32) NOT NULL DEFAULT '', `10title` VARCHAR(64) NOT NULL DEFAULT '',
    `10compare` VARCHAR(8) NOT NULL DEFAULT '',
    `10warning` VARCHAR(16) NOT NULL DEFAULT '', `10alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `11name` VARCHAR(32) NOT NULL DEFAULT '', `11title` VARCHAR(64) NOT NULL DEFAULT '',
    `11compare` VARCHAR(8) NOT NULL DEFAULT '',
    `11warning` VARCHAR(16) NOT NULL DEFAULT '', `11alarm` VARCHAR(16) NOT NULL DEFAULT '',
    `12name` VARCHAR(32) NOT NULL DEFAULT '', `12title` VARCHAR(64) NOT NULL DEFAULT '',
    `12compare` VARCHAR(8) NOT NULL DEFAULT '',
    `12warning` VARCHAR(16) NOT NULL DEFAULT '', `12alarm` VARCHAR(16) NOT NULL DEFAULT '',
    PRIMARY KEY (id),
    KEY wallboardid (wallboardid, pos)
);

CREATE TABLE IF NOT EXISTS WallboardCache (
    customerid  INT NOT NULL,
    querytype   VARCHAR(32) NOT NULL,
    tel         VARCHAR(64) NOT NULL,
    dateupdated TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP,
    r1          VARCHAR(64) NULL,                       -- the text shown
    r2          VARCHAR(64) NULL,                       -- the number compared with the triggers
    KEY customerid (customerid, querytype, tel, dateupdated)
);

CREATE TABLE IF NOT EXISTS NewWallboardPage (
    id          INT NOT NULL AUTO_INCREMENT,
    customer_id INT NOT NULL,
    user_id     INT NOT NULL DEFAULT 0,
    name        VARCHAR(128) NOT NULL DEFAULT '',
    dateCreated DATETIME NULL,
    locked      TINYINT NOT NULL DEFAULT 0,
    active      TINYINT NOT NULL DEFAULT 0,
    bordermode  INT NOT NULL DEFAULT 0,
    startTime   VARCHAR(4) NULL DEFAULT '',             -- hhmm in UTC; '' or NULL: none
    PRIMARY KEY (id),
    KEY customer_id (customer_id)
);

-- Copied by dropping the first two columns, so those stay first and more must follow.
CREATE TABLE IF NOT EXISTS NewWallboardData (
    id          INT NOT NULL AUTO_INCREMENT,
    wallboardid INT NOT NULL,
    x           INT NOT NULL DEFAULT 0,
    y           INT NOT NULL DEFAULT 0,
    data        TEXT NULL,
    PRIMARY KEY (id),
    KEY wallboardid (wallboardid)
);

CREATE TABLE IF NOT EXISTS NewWallboardBLFGroup (
    wallboardid INT NOT NULL,
    name        VARCHAR(64) NOT NULL DEFAULT '',
    KEY wallboardid (wallboardid)
);

-- ---------------------------------------------------------------- stored function

-- Seconds as hh:mm:ss, rounded to whole seconds. Unlike the server's own function it counts on
-- past 838:59:59. NULL reads as 0.
CREATE OR REPLACE FUNCTION SEC_TO_TIME_F(s DECIMAL(20,4)) RETURNS VARCHAR(24) CHARSET utf8mb4
    DETERMINISTIC NO SQL
    RETURN CONCAT(
        IF(ROUND(s) < 0, '-', ''),
        IF(ABS(ROUND(IFNULL(s, 0))) < 36000, '0', ''),
        ABS(ROUND(IFNULL(s, 0))) DIV 3600, ':',
        LPAD(ABS(ROUND(IFNULL(s, 0))) DIV 60 MOD 60, 2, '0'), ':',
        LPAD(ABS(ROUND(IFNULL(s, 0))) MOD 60, 2, '0'));
